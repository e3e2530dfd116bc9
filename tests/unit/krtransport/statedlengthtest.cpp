#include "gigevision/statedlength.h"

#include <gtest/gtest.h>

#include <cstdint>

namespace {

using namespace krtransport;

struct URLRow {
  const char* name;
  const char* url;
  std::uint64_t length;
};

constexpr URLRow kRows[] = {
    {"Empty", "", 0},
    {"NameAlone", "Local:camera.xml", 0},
    {"AddressAlone", "Local:camera.xml;F0000000", 0},
    {"Plain", "Local:camera.xml;F0000000;1234", 0x1234},
    {"WithPrefixes", "local:camera.zip;0xF0000000;0X12ab", 0x12AB},
    {"WithBlanks", "Local:camera.xml; 10000; 2000 ", 0x2000},
    {"WithBlanksBehindTheAddress", "Local:camera.xml;10000 ;2000", 0x2000},
    {"WithAVersion", "Local:camera.xml;10000;2000?SchemaVersion=1.1.0", 0x2000},
    {"SixtyFourBits", "Local:camera.xml;0;FFFFFFFFFFFFFFFF", UINT64_MAX},
    {"BeyondSixtyFourBits", "Local:camera.xml;0;100000000000000000000", UINT64_MAX},
    {"NoNumber", "Local:camera.xml;0;many", 0},
    {"NameWithASemicolon", "Local:left;right.xml;F0000000;1234", 0x1234},
    {"BeforeSomethingElse", "Local:camera.xml;0;7FFFFFFFFFFFFFFF;many", 0x7FFFFFFFFFFFFFFF},
    {"BeforeAnEmptyField", "Local:camera.xml;0;7FFFFFFFFFFFFFFF;", 0x7FFFFFFFFFFFFFFF},
    {"BehindAnEmptyAddress", "Local:camera.xml;;7FFFFFFFFFFFFFFF", 0x7FFFFFFFFFFFFFFF},
};

class StatedLength : public testing::TestWithParam<URLRow> {};

TEST_P(StatedLength, OfAURL_IsTheLargestThatMayBeMeant) {
  EXPECT_EQ(GetStatedLength(GetParam().url), GetParam().length);
}

INSTANTIATE_TEST_SUITE_P(URLs, StatedLength, testing::ValuesIn(kRows),
                         [](const auto& aInfo) { return aInfo.param.name; });

} // namespace
