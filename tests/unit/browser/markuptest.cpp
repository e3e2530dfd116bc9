#include "logic/browser/markup.h"

#include <gmock/gmock.h>

#include <ostream>
#include <string>

namespace krgui {

void PrintTo(const MarkupRun& aRun, std::ostream* aStream) {
  *aStream << (aRun.isBold ? "bold \"" : "\"") << aRun.text << "\"";
}

namespace {

struct MarkupRow {
  const char* name;
  const char* text;
  std::vector<MarkupRun> runs;
};

const std::vector<MarkupRow> kMarkupRows = {
    {"nothing", "", {}},
    {"no mark-up", "plain", {{"plain", false}}},
    {"an end in normal text is text", "a<b>b</b>c</b>d", {{"a", false}, {"b", true}, {"c</b>d", false}}},
    {"tags do not nest", "<b>a<b>b</b>c</b>", {{"a<b>b", true}, {"c</b>", false}}},
    {"a missing end leaves the rest bold", "a<b>b\nc", {{"a", false}, {"b\nc", true}}},
    {"an empty bold run", "a<b></b>b", {{"a", false}, {"b", false}}},
    {"a begin at the very end", "a<b>", {{"a", false}}},
    {"line ends stay", "<b>Name</b>\n\nText\r\n", {{"Name", true}, {"\n\nText\r\n", false}}},
    {"tags in capitals are text", "<B>a</B>", {{"<B>a</B>", false}}},
    {"a tag that is cut is text", "a<b", {{"a<b", false}}},
    {"a tag with a blank is text", "< b>a", {{"< b>a", false}}},
    {"several runs",
     "Selectors: <b>A</b>, <b>B</b>",
     {{"Selectors: ", false}, {"A", true}, {", ", false}, {"B", true}}},
};

struct TitleRow {
  const char* name;
  int height;
  int expected;
};

constexpr TitleRow kTitleRows[] = {
    {"nothing", 0, 0},     {"rounded up to one", 1, 1}, {"a half is rounded up", 15, 20},       {"rounded down", 8, 10},
    {"rounded up", 9, 12}, {"exact", 10, 13},           {"in twentieths of a point", 160, 208},
};

} // namespace

TEST(SplitMarkup, RowsOfTexts_GiveTheRunsExpected) {
  for (const MarkupRow& row : kMarkupRows) {
    EXPECT_THAT(SplitMarkup(row.text), testing::ElementsAreArray(row.runs)) << row.name;
  }
}

TEST(SplitMarkup, TextOfAHundredThousandTags_GivesAllRuns) {
  std::string text;
  for (int i = 0; i < 50000; ++i) {
    text += "n<b>b</b>";
  }

  const std::vector<MarkupRun> runs = SplitMarkup(text);

  ASSERT_EQ(runs.size(), 100000U);
  EXPECT_EQ(runs.front(), (MarkupRun{"n", false}));
  EXPECT_EQ(runs.back(), (MarkupRun{"b", true}));
}

TEST(LeavesBold, RowsOfTexts_SayWhetherARunHasNoEnd) {
  struct {
    const char* text;
    bool isOpen;
  } constexpr kRows[] = {
      {"", false},        {"plain", false},   {"<b>a</b>", false},        {"<b>a", true},  {"a<b>", true},
      {"a</b>", false},   {"</b><b>", true},  {"<b>a<b>b</b>c", false},   {"<B>a", false}, {"<b>a</b><b>b", true},
      {"<b>a</B>", true}, {"<b></b>", false}, {"<b>a</b>b</b><b", false},
  };

  for (const auto& row : kRows)
    EXPECT_EQ(LeavesBold(row.text), row.isOpen) << row.text;
}

TEST(ScaleTitleHeight, RowsOfHeights_AreScaledAndRounded) {
  for (const TitleRow& row : kTitleRows) {
    EXPECT_EQ(ScaleTitleHeight(row.height), row.expected) << row.name;
  }
}

} // namespace krgui
