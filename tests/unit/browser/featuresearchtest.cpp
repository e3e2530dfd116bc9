#include "logic/browser/featuresearch.h"

#include "browsedcamera.h"

#include <gmock/gmock.h>

#include <limits>
#include <ostream>

using testing::ElementsAre;
using testing::IsEmpty;

namespace krgui {

void PrintTo(const TextMatch& aMatch, std::ostream* aStream) {
  *aStream << aMatch.length << " units at " << aMatch.position;
}

namespace {

struct LowerRow {
  const char* name;
  const char* text;
  const char* expected;
};

constexpr LowerRow kLowerRows[] = {
    {"nothing", "", ""},
    {"capitals", "GainAuto2_X", "gainauto2_x"},
    {"small letters stay", "gain", "gain"},
    {"letters with marks", "ÄÖÜÉ", "äöüé"},
    {"Greek", "ΓΑΙΝ", "γαιν"},
    {"Cyrillic", "УСИЛЕНИЕ", "усиление"},
    {"letters beyond 16 bits", "\U00010400", "\U00010428"},
    {"a script without small letters", "增益", "增益"},
    {"a letter whose small one is shorter", "\u212A", "k"},
    {"signs beyond 16 bits", "a\U0001F4F7B", "a\U0001F4F7b"},
};

struct MatchRow {
  const char* name;
  const char* text;
  const char* wanted;
  std::optional<TextMatch> expected;
};

const MatchRow kMatchRows[] = {
    {"at the beginning", "GainAuto", "gain", TextMatch{0, 4}},
    {"inside", "DigitalGainSelector", "gain", TextMatch{7, 4}},
    {"at the end", "AutoGain", "gain", TextMatch{4, 4}},
    {"the first of several", "GainGain", "gain", TextMatch{0, 4}},
    {"the whole name", "Gain", "gain", TextMatch{0, 4}},
    {"longer than the name", "Gain", "gains", std::nullopt},
    {"not in it", "Width", "gain", std::nullopt},
    {"nothing wanted", "Width", "", std::nullopt},
    {"an empty name", "", "gain", std::nullopt},
    {"a name with blanks", "Gain (dB)", "(db", TextMatch{5, 3}},
    {"behind a letter with marks", "VerstärkungGain", "gain", TextMatch{11, 4}},
    {"behind a sign of two units", "\U0001F4F7Gain", "gain", TextMatch{2, 4}},
    {"of letters of two units", "a\U00010400\U00010401", "\U00010428", TextMatch{1, 2}},
    {"of a letter whose small one is shorter", "xK\u212A", "kk", TextMatch{1, 2}},
    {"behind bytes that are no text", "\xFFGain", "gain", TextMatch{1, 4}},
    {"a letter of another script", "Gain", "γ", std::nullopt},
};

struct ResultRow {
  const char* name;
  std::size_t position;
  std::size_t count;
  const char* expected;
};

constexpr ResultRow kResultRows[] = {
    {"the first of one", 1, 1, "Result 1 of 1"},
    {"the second of seven", 2, 7, "Result 2 of 7"},
    {"none", 0, 0, "No result found"},
    {"a position without results", 3, 0, "No result found"},
    {"more than 31 characters", std::numeric_limits<std::size_t>::max(), std::numeric_limits<std::size_t>::max(),
     "Result 18446744073709551615 of "},
};

std::string MakeFeature(const std::string& aName, const std::string& aDisplayName) {
  return "<Integer Name=\"" + aName + "\"><DisplayName>" + aDisplayName + "</DisplayName><Value>1</Value></Integer>";
}

// A camera with four features, three of which have gain in their name.
class FeatureSearchTest : public testing::Test {
protected:
  FeatureSearchTest() {
    for (const char* name : {"Gain", "GainAuto", "Width", "DigitalGainSelector"}) {
      (void)mCamera.Node(name);
    }
  }
  const char* GetCurrentName() {
    const TreeItemData* const node = mCamera.tree.FindFeature(mSearch.GetCurrent());
    return node ? node->GetName().CStr() : "";
  }
  void Find(const char* aText, bool aByDisplayName = false) {
    mSearch.Find(mCamera.tree.GetFeatures(), aText, aByDisplayName);
  }

  BrowsedCamera mCamera{MakeFeature("Gain", "Amplification") + MakeFeature("GainAuto", "Automatic") +
                        MakeFeature("Width", "Columns") + MakeFeature("DigitalGainSelector", "Which Amplification") +
                        MakeCategory("Root", {"Gain", "GainAuto", "Width", "DigitalGainSelector"})};
  FeatureSearch mSearch;
};

} // namespace

TEST(ToLowerCase, RowsOfTexts_GiveSmallLetters) {
  for (const LowerRow& row : kLowerRows) {
    EXPECT_STREQ(ToLowerCase(row.text).CStr(), row.expected) << row.name;
  }
}

TEST(FindMatch, RowsOfNames_GiveTheFirstMatchInUnitsOfTheName) {
  for (const MatchRow& row : kMatchRows) {
    EXPECT_EQ(FindMatch(row.text, row.wanted), row.expected) << row.name;
  }
}

TEST(FormatResult, RowsOfPositions_GiveTheTextExpected) {
  for (const ResultRow& row : kResultRows) {
    EXPECT_STREQ(FormatResult(row.position, row.count).CStr(), row.expected) << row.name;
  }
}

TEST_F(FeatureSearchTest, Find_PartOfThreeNames_BeginsWithTheFirstOfTheList) {
  Find("gain");

  EXPECT_EQ(mSearch.GetCount(), 3U);
  EXPECT_EQ(mSearch.GetPosition(), 1U);
  EXPECT_STREQ(GetCurrentName(), "Gain");
}

TEST_F(FeatureSearchTest, MoveToNext_FromResultToResult_EndsWhereItBegan) {
  Find("gain");
  std::vector<std::string> names;
  std::vector<std::size_t> positions;

  for (int i = 0; i < 3; ++i) {
    const GridItem next = mSearch.MoveToNext();

    EXPECT_EQ(next, mSearch.GetCurrent());
    names.emplace_back(GetCurrentName());
    positions.push_back(mSearch.GetPosition());
  }

  EXPECT_THAT(names, ElementsAre("GainAuto", "DigitalGainSelector", "Gain"));
  EXPECT_THAT(positions, ElementsAre(2U, 3U, 1U));
}

TEST_F(FeatureSearchTest, MoveToPrevious_FromTheFirst_SelectsTheLast) {
  Find("gain");

  const GridItem last = mSearch.MoveToPrevious();

  EXPECT_EQ(last, mSearch.GetCurrent());
  EXPECT_STREQ(GetCurrentName(), "DigitalGainSelector");
  EXPECT_EQ(mSearch.GetPosition(), 3U);

  (void)mSearch.MoveToPrevious();
  EXPECT_STREQ(GetCurrentName(), "GainAuto");
}

TEST_F(FeatureSearchTest, Find_ByDisplayNames_LooksAtTheseAlone) {
  Find("amplification", true);
  EXPECT_EQ(mSearch.GetCount(), 2U);
  EXPECT_STREQ(GetCurrentName(), "Gain");

  Find("gain", true);
  EXPECT_EQ(mSearch.GetCount(), 0U);
}

TEST_F(FeatureSearchTest, Find_NoMatch_HasNoCurrentResult) {
  Find("gain");

  Find("nowhere");

  EXPECT_EQ(mSearch.GetCount(), 0U);
  EXPECT_EQ(mSearch.GetPosition(), 0U);
  EXPECT_EQ(mSearch.GetCurrent(), kNoItem);
  EXPECT_EQ(mSearch.MoveToNext(), kNoItem);
  EXPECT_EQ(mSearch.MoveToPrevious(), kNoItem);
}

TEST_F(FeatureSearchTest, Clear_AfterAMatch_HasNoResult) {
  Find("gain");

  mSearch.Clear();

  EXPECT_EQ(mSearch.GetCount(), 0U);
  EXPECT_EQ(mSearch.GetCurrent(), kNoItem);
}

TEST_F(FeatureSearchTest, Find_AfterMovingOn_BeginsWithTheFirstAgain) {
  Find("gain");
  (void)mSearch.MoveToNext();

  Find("auto");

  EXPECT_EQ(mSearch.GetPosition(), 1U);
  EXPECT_STREQ(GetCurrentName(), "GainAuto");
}

} // namespace krgui
