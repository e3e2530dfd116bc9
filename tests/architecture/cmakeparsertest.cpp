#include "cmakeparser.h"

#include <gmock/gmock.h>

namespace archcheck {
namespace {

TEST(CMakeParser, Calls_AreReadWithTheirWordsAndLines) {
  const auto calls = ParseCMake(
      "# A comment with kr_add_library(no)\nKR_Add_Library(krbase ALIAS Base\n  FOREIGN\n    \"a b\")\nset(x y)\n");

  ASSERT_EQ(calls.size(), 2U);
  EXPECT_EQ(calls[0].name, "kr_add_library");
  ASSERT_EQ(calls[0].arguments.size(), 5U);
  EXPECT_EQ(calls[0].arguments[4].text, "a b");
  EXPECT_EQ(calls[0].arguments[4].line, 4);
  EXPECT_EQ(calls[1].name, "set");
}

TEST(CMakeParser, NestedParentheses_StayInTheirCall) {
  const auto calls = ParseCMake("if((A OR B) AND C)\nendif()");

  ASSERT_EQ(calls.size(), 2U);
  EXPECT_EQ(calls[0].arguments.size(), 5U);
}

TEST(CMakeParser, WordsAfterKeyword_EndAtTheNextKeyword) {
  const auto calls =
      ParseCMake("kr_add_library(krgui DEPENDS krbase\n krbuffer FOREIGN Qt6::Widgets DEPENDS krsystem)");

  const auto words = GetWordsAfter(calls.at(0), "DEPENDS");

  ASSERT_EQ(words.size(), 3U);
  EXPECT_EQ(words[0].text, "krbase");
  EXPECT_EQ(words[1].line, 2);
  EXPECT_EQ(words[2].text, "krsystem");
}

TEST(CMakeParser, LinkedName_IsFreedOfGeneratorExpressions) {
  EXPECT_EQ(GetLinkedName("krbase"), "krbase");
  EXPECT_EQ(GetLinkedName("Kr::Base"), "Kr::Base");
  EXPECT_EQ(GetLinkedName("$<BUILD_INTERFACE:Kr::Base>"), "Kr::Base");
  EXPECT_EQ(GetLinkedName("$<$<BOOL:x>:Qt6::Core>"), "Qt6::Core");
  EXPECT_EQ(GetLinkedName("$<LINK_ONLY:$<BUILD_INTERFACE:krbase>>"), "krbase");
}

} // namespace
} // namespace archcheck
