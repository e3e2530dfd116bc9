#include "includeparser.h"

#include <gmock/gmock.h>

#include <algorithm>

namespace archcheck {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

TEST(IncludeParser, QuotedAndAngledIncludes_AreFoundAtTheirLines) {
  const auto includes = ParseIncludes("#pragma once\n\n#include \"krbase/krstring.h\"\n  #  include <vector>\n");

  EXPECT_THAT(includes, ElementsAre(Include{3, "krbase/krstring.h"}, Include{4, "vector"}));
}

TEST(IncludeParser, FileWithoutLastLineBreak_KeepsItsLastInclude) {
  EXPECT_THAT(ParseIncludes("#include <map>"), ElementsAre(Include{1, "map"}));
}

struct Hidden {
  const char* description;
  const char* source;
};

class HiddenInclude : public testing::TestWithParam<Hidden> {};

TEST_P(HiddenInclude, PassedOver_LaterIncludeIsFoundAtItsLine) {
  const auto includes = ParseIncludes(std::string(GetParam().source) + "\n#include <set>");

  ASSERT_EQ(includes.size(), 1U);
  EXPECT_EQ(includes.front().path, "set");
  EXPECT_GT(includes.front().line, 1);
}

INSTANTIATE_TEST_SUITE_P(Places, HiddenInclude,
                         testing::Values(Hidden{"line comment", "// #include <vector>"},
                                         Hidden{"block comment", "/*\n#include <vector>\n*/"},
                                         Hidden{"raw literal", "auto text = R\"x(\n#include <vector>\n)x\";"},
                                         Hidden{"encoded raw literal", "auto text = u8R\"(\n#include <vector>\n)\";"},
                                         Hidden{"literal with comment start", "auto text = \"/*\";"},
                                         Hidden{"literal with escaped quote", "auto text = \"\\\"/*\";"},
                                         Hidden{"quote character", "char quote = '\"';"},
                                         Hidden{"digit separator", "int a = 1'000, b = 2;"},
                                         Hidden{"wide quote character", "auto quote = L'\"'; auto slash = u'/';"},
                                         Hidden{"other directive", "#define include_vector <vector>"}),
                         [](const auto& aInfo) {
                           std::string name = aInfo.param.description;
                           std::replace(name.begin(), name.end(), ' ', '_');
                           return name;
                         });

TEST(IncludeParser, TextWithoutIncludes_GivesNone) {
  EXPECT_THAT(ParseIncludes("int includeCount = 3;\n"), IsEmpty());
}

} // namespace
} // namespace archcheck
