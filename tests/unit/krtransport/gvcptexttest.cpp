#include "gigevision/gvcptext.h"

#include <gtest/gtest.h>

#include <vector>

namespace {

using namespace krtransport;

struct TextRow {
  const char* name;
  std::string field;
  std::string text;
};

// A macro, so that the table can join literals.
#define KR_REPLACEMENT "\xEF\xBF\xBD"

const TextRow kTexts[] = {
    {"Empty", "", ""},
    {"ZeroFirst", std::string("\0abc", 4), ""},
    {"Terminated", std::string("abc\0def", 7), "abc"},
    {"Unterminated", "abcdef", "abcdef"},
    {"ControlCharacters",
     "a\x01\n\x7F"
     "b",
     "a" KR_REPLACEMENT KR_REPLACEMENT KR_REPLACEMENT "b"},
    {"Latin1Umlaut", "K\xF6ln", "K" KR_REPLACEMENT "ln"},
    {"Utf8Umlaut", "K\xC3\xB6ln", "K\xC3\xB6ln"},
    {"Utf8ThreeBytes", "\xE2\x82\xAC", "\xE2\x82\xAC"},
    {"Utf8FourBytes", "\xF0\x9F\x93\xB7", "\xF0\x9F\x93\xB7"},
    {"SequenceCutByTheFieldsEnd", "a\xE2\x82", "a" KR_REPLACEMENT KR_REPLACEMENT},
    {"LoneContinuation", "\x80", KR_REPLACEMENT},
    {"OverlongSlash", "\xC0\xAF", KR_REPLACEMENT KR_REPLACEMENT},
    {"Surrogate", "\xED\xA0\x80", KR_REPLACEMENT KR_REPLACEMENT KR_REPLACEMENT},
    {"BeyondUnicode", "\xF4\x90\x80\x80", KR_REPLACEMENT KR_REPLACEMENT KR_REPLACEMENT KR_REPLACEMENT},
    {"ControlInTwoBytes", "\xC2\x85", KR_REPLACEMENT KR_REPLACEMENT},
};

class GvcpText : public testing::TestWithParam<TextRow> {};

TEST_P(GvcpText, ReadText_Field_GivesPrintableUtf8) {
  const std::vector<std::uint8_t> field(GetParam().field.begin(), GetParam().field.end());

  EXPECT_EQ(ReadText(field), GetParam().text);
}

INSTANTIATE_TEST_SUITE_P(Fields, GvcpText, testing::ValuesIn(kTexts),
                         [](const auto& aInfo) { return aInfo.param.name; });

TEST(GvcpMac, ParseMac_WhatFormatMacWrote_GivesTheSameBytes) {
  const MacBytes mac = {0x00, 0x1A, 0x2B, 0x3C, 0x4D, 0xFF};
  MacBytes parsed{};

  EXPECT_EQ(FormatMac(mac), "00:1a:2b:3c:4d:ff");
  EXPECT_TRUE(ParseMac(FormatMac(mac), parsed));
  EXPECT_EQ(parsed, mac);
}

TEST(GvcpMac, ParseMac_AnythingElse_IsRefusedAndLeavesTheBytes) {
  const MacBytes before = {1, 2, 3, 4, 5, 6};

  for (const char* text : {"", "00:1a:2b:3c:4d", "00:1a:2b:3c:4d:5e:6f", "00-1a-2b-3c-4d-5e", "0g:1a:2b:3c:4d:5e",
                           "-1:1a:2b:3c:4d:5e", "001:a:2b:3c:4d:5e", "00:1a:2b:3c:4d:5 "}) {
    MacBytes mac = before;
    EXPECT_FALSE(ParseMac(text, mac)) << text;
    EXPECT_EQ(mac, before) << text;
  }
}

} // namespace
