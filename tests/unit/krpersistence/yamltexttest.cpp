#include "krpersistence/yamlmap.h"
#include "krpersistence/yamltext.h"

#include <gmock/gmock.h>

#include <string>
#include <string_view>

using krpersistence::YamlKind;
using krpersistence::YamlNode;
using testing::HasSubstr;
using testing::IsEmpty;

namespace {

// What is wrong with a text, and what was read of it.
struct Reading {
  YamlNode root;
  std::string problems;
};

Reading Read(std::string_view aText) {
  krpersistence::TextProblems problems;
  Reading reading;
  reading.root = krpersistence::ParseYaml(aText, problems);
  reading.problems = problems.GetText();
  return reading;
}

// A sequence with so many aliases of a text of so many bytes, which stands there once.
std::string RepeatByAlias(std::size_t aBytes, std::size_t aTimes, const std::string& aItem) {
  std::string text = "a: &a " + std::string(aBytes, 'x') + "\nb: [";
  for (std::size_t i = 0; i < aTimes; ++i)
    text += aItem + ", ";
  return text + "]\n";
}

struct QuotedRow {
  const char* name;
  const char* text;
};

class QuotationMarks : public testing::TestWithParam<QuotedRow> {};

class OpenQuotationMarks : public testing::TestWithParam<QuotedRow> {};

} // namespace

TEST(YamlText, AliasesOfALongText_AreRefusedBeforeTheyFillTheMemory) {
  const Reading reading = Read(RepeatByAlias(200000, 5000, "*a"));

  EXPECT_THAT(reading.problems, HasSubstr("more than 4194304 bytes of text, those of anchors and aliases included"));
  // 4 MiB have room for the text itself, the anchor's copy and 18 more.
  ASSERT_EQ(reading.root.items.size(), 2u);
  EXPECT_EQ(reading.root.items[1].items.size(), 18u);
}

TEST(YamlText, AliasesAsKeys_CountAsWell) {
  const Reading reading = Read(RepeatByAlias(200000, 5000, "{*a : 1}"));

  EXPECT_THAT(reading.problems, HasSubstr("more than 4194304 bytes of text"));
}

TEST(YamlText, KeysWithinWhatAnAliasRepeats_CountAsWell) {
  std::string text = "a: &a {" + std::string(1000, 'x') + ": 1}\nb: [";
  for (int i = 0; i < 5000; ++i)
    text += "*a, ";
  const Reading reading = Read(text + "]\n");

  EXPECT_THAT(reading.problems, HasSubstr("more than 4194304 bytes of text"));
}

TEST(YamlText, AliasesWithinTheLimit_AreRead) {
  const Reading reading = Read(RepeatByAlias(100, 5000, "*a"));

  EXPECT_THAT(reading.problems, IsEmpty());
  ASSERT_EQ(reading.root.items.size(), 2u);
  EXPECT_EQ(reading.root.items[1].items.size(), 5000u);
}

TEST(YamlText, WordOfManyByteCharacters_IsQuotedUpToAWholeOne) {
  std::string word;
  std::string beginning;
  for (int i = 0; i < 50; ++i) {
    word += "\xE2\x82\xAC";
    beginning += i < 21 ? "\xE2\x82\xAC" : "";
  }
  krpersistence::TextProblems problems;
  const YamlNode root = krpersistence::ParseYaml("flag: " + word, problems);
  krpersistence::YamlMap map(root, "a map", problems);
  bool flag = false;

  map.TakeFlag("flag", flag);

  EXPECT_THAT(problems.GetText(), HasSubstr("\"" + beginning + "…\""));
}

// Were the text searched to its end for each of them, this would take minutes.
TEST(YamlText, AsManyTaggedValuesAsThereMayBe_AreRead) {
  std::string text;
  for (int i = 0; i < 99000; ++i)
    text += "- ! a\n";

  const Reading reading = Read(text);

  EXPECT_THAT(reading.problems, IsEmpty());
  EXPECT_EQ(reading.root.items.size(), 99000u);
}

TEST_P(QuotationMarks, ThatBelongToTheValue_AreTheOnesThatHaveToBeClosed) {
  const Reading reading = Read(GetParam().text);

  EXPECT_THAT(reading.problems, IsEmpty());
  EXPECT_EQ(reading.root.kind, YamlKind::Map);
}

INSTANTIATE_TEST_SUITE_P(Rows, QuotationMarks,
                         testing::Values(QuotedRow{"BehindATag", "{a: ! \"b\"} # don't"},
                                         QuotedRow{"InACommentBehindATaggedWord", "{a: ! eth0} # don't"},
                                         QuotedRow{"InACommentBetweenTagAndWord", "a: ! # don't\n  eth0\n"},
                                         QuotedRow{"InAnAnchorsName", "{a: &a'b \"eth0\"}"},
                                         QuotedRow{"InAVerbatimTag", "{a: !<it's> \"eth0\"}"},
                                         QuotedRow{"BehindABlockOfLines", "a: |\n  text\nb: x # don't\n"},
                                         QuotedRow{"WithinABlockOfLines", "a: >\n  it's \"text\n"},
                                         QuotedRow{"BehindAnEmptyTaggedValue", "a: !\nb: it's\n"},
                                         QuotedRow{"BehindAByteOrderMark", "\xEF\xBB\xBF{\"a\": 'b'} # don't"}),
                         [](const auto& aInfo) { return aInfo.param.name; });

TEST_P(OpenQuotationMarks, AreRefused) {
  const std::string text = std::string(GetParam().text) + "\n  and what follows: here\n";

  EXPECT_THAT(Read(text).problems, HasSubstr("the quotation marks are not closed"));
}

INSTANTIATE_TEST_SUITE_P(Rows, OpenQuotationMarks,
                         testing::Values(QuotedRow{"Alone", "a: \"b"},
                                         QuotedRow{"BehindATag", "a: ! 'b"},
                                         QuotedRow{"BehindATagAndAnAnchor", "a: ! &b'c \"d"},
                                         QuotedRow{"BehindAnAnchorAndATag", "a: &b\"c\" ! 'd"},
                                         QuotedRow{"BehindAnAnchorAndAComment", "a: &b # \"c\"\n  'd"},
                                         QuotedRow{"BehindAByteOrderMark", "\xEF\xBB\xBF'it''s"}),
                         [](const auto& aInfo) { return aInfo.param.name; });
