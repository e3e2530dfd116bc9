#include "map/featuretree.h"

#include "describedcamera.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>

using krgenicam::Description;
using krgenicam::FeatureTree;
using krgenicam::NodeIndex;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

// A tree and the description that it borrows.
class FeatureTreeTest : public testing::Test {
protected:
  void Take(const std::string& aNodes) {
    KrGenDescription text;
    ASSERT_TRUE(KrGenDescription::ReadFromMemory(MakeDescription(aNodes), "test", text).IsOK());
    ASSERT_TRUE(Description::Read(text, mDescription).IsOK());
    mTree = FeatureTree(mDescription);
  }
  std::vector<std::string> GetFeatures() const {
    std::vector<std::string> names;
    for (const NodeIndex feature : mTree.GetFeatures())
      names.emplace_back(mDescription.GetNodes()[feature].name);
    return names;
  }
  std::vector<std::string> GetPaths(const char* aName) const { return mTree.GetPaths(mDescription.Find(aName)); }

  Description mDescription;
  FeatureTree mTree;
};

std::string MakeCategory(const std::string& aName, const std::vector<std::string>& aFeatures) {
  std::string text = "<Category Name=\"" + aName + "\">";
  for (const std::string& feature : aFeatures)
    text += "<pFeature>" + feature + "</pFeature>";
  return text + "</Category>\n";
}

std::string MakeFeature(const std::string& aName) {
  return "<Integer Name=\"" + aName + "\"><Value>1</Value></Integer>\n";
}

} // namespace

TEST_F(FeatureTreeTest, GetFeatures_NestedCategories_AreInTheOrderInWhichCategoriesNameThem) {
  Take(MakeFeature("First") + MakeFeature("Second") + MakeFeature("Third") +
       MakeCategory("Root", {"Third", "Inner", "First"}) + MakeCategory("Inner", {"Second"}));

  EXPECT_THAT(GetFeatures(), ElementsAre("Third", "Second", "First"));
}

TEST_F(FeatureTreeTest, GetFeatures_NodeThatNoCategoryHolds_IsNoFeature) {
  Take(MakeFeature("Feature") + MakeFeature("Loose") + MakeCategory("Root", {"Feature"}));

  EXPECT_THAT(GetFeatures(), ElementsAre("Feature"));
  EXPECT_THAT(GetPaths("Loose"), IsEmpty());
}

TEST_F(FeatureTreeTest, GetFeatures_PortAndMissingNodeInACategory_AreLeftOut) {
  Take(MakeFeature("Feature") + MakeCategory("Root", {"Device", "Missing", "Feature"}));

  EXPECT_THAT(GetFeatures(), ElementsAre("Feature"));
}

TEST_F(FeatureTreeTest, GetPaths_FeatureInSeveralCategories_NamesThemAllInOrderAndCountsTheFeatureOnce) {
  Take(MakeFeature("Gain") + MakeCategory("Root", {"Analog", "Favourites"}) + MakeCategory("Analog", {"Deep", "Gain"}) +
       MakeCategory("Deep", {"Gain"}) + MakeCategory("Favourites", {"Gain", "Gain"}));

  EXPECT_THAT(GetFeatures(), ElementsAre("Gain"));
  EXPECT_THAT(GetPaths("Gain"), ElementsAre("Root\\Analog\\Deep", "Root\\Analog", "Root\\Favourites"));
}

TEST_F(FeatureTreeTest, GetPaths_CategoryReachedTwice_HasTheFeatureUnderBothPaths) {
  Take(MakeFeature("Gain") + MakeCategory("Root", {"A", "B"}) + MakeCategory("A", {"Shared"}) +
       MakeCategory("B", {"Shared"}) + MakeCategory("Shared", {"Gain"}));

  EXPECT_THAT(GetPaths("Gain"), ElementsAre("Root\\A\\Shared", "Root\\B\\Shared"));
}

TEST_F(FeatureTreeTest, GetFeatures_CategoriesInACircle_AreWalkedOnceAndNotedAsAFault) {
  Take(MakeFeature("Gain") + MakeCategory("Root", {"A"}) + MakeCategory("A", {"B"}) +
       MakeCategory("B", {"A", "Gain", "B"}));

  EXPECT_THAT(GetPaths("Gain"), ElementsAre("Root\\A\\B"));
  ASSERT_EQ(mTree.GetFaults().size(), 2u);
  EXPECT_EQ(mTree.GetFaults()[0].node, "A");
  EXPECT_EQ(mTree.GetFaults()[1].node, "B");
}

TEST_F(FeatureTreeTest, GetFeatures_WithoutRoot_BeginAtTheCategoriesThatNoOtherHolds) {
  Take(MakeFeature("X") + MakeFeature("Y") + MakeCategory("Inner", {"X"}) + MakeCategory("One", {"Inner"}) +
       MakeCategory("Two", {"Y"}));

  EXPECT_THAT(GetFeatures(), ElementsAre("X", "Y"));
  EXPECT_THAT(GetPaths("X"), ElementsAre("One\\Inner"));
}

TEST_F(FeatureTreeTest, GetFeatures_TenThousandNestedCategories_ReachTheInnermostOverALimitedNumberOfLevels) {
  constexpr int kDepth = 10000;
  std::string nodes = MakeCategory("Root", {"C0"}) + MakeFeature("Deepest");
  for (int i = 0; i < kDepth; ++i)
    nodes += MakeCategory("C" + std::to_string(i), {i + 1 < kDepth ? "C" + std::to_string(i + 1) : "Deepest"});

  Take(nodes);

  EXPECT_THAT(GetFeatures(), ElementsAre("Deepest"));
  const std::string path = GetPaths("Deepest").at(0);
  EXPECT_EQ(std::ranges::count(path, '\\') + 1, static_cast<std::ptrdiff_t>(FeatureTree::kMostLevels));
  EXPECT_TRUE(path.ends_with("\\C253\\C254"));
  ASSERT_EQ(mTree.GetFaults().size(), 1u);
  EXPECT_EQ(mTree.GetFaults()[0].node, "C255");
}

TEST_F(FeatureTreeTest, GetPaths_BelowTheLastLevel_AreThoseOfTheLastLevel) {
  const int last = static_cast<int>(FeatureTree::kMostLevels) - 1;
  std::string nodes = MakeCategory("Root", {"C1"}) + MakeFeature("X") + MakeFeature("Y") + MakeFeature("Z");
  for (int i = 1; i < last; ++i)
    nodes += MakeCategory("C" + std::to_string(i), {"C" + std::to_string(i + 1)});

  Take(nodes + MakeCategory("C" + std::to_string(last), {"X", "A", "B"}) + MakeCategory("A", {"Y", "Inner"}) +
       MakeCategory("B", {"X", "Z"}) + MakeCategory("Inner", {"A", "Z"}));

  EXPECT_THAT(GetFeatures(), ElementsAre("X", "Y", "Z"));
  for (const char* const name : {"X", "Y", "Z"})
    EXPECT_THAT(GetPaths(name), ElementsAre(testing::EndsWith("\\C" + std::to_string(last)))) << name;
}

TEST_F(FeatureTreeTest, GetPaths_CategoriesThatDoubleAtEachLevel_KeepAFewPlacesAndNoteTheRest) {
  // 2^40 paths lead to the feature.
  std::string nodes = MakeCategory("Root", {"L0a", "L0b"}) + MakeFeature("Deepest");
  for (int level = 0; level < 40; ++level) {
    const std::string next = "L" + std::to_string(level + 1);
    for (const char* const side : {"a", "b"}) {
      const std::string name = "L" + std::to_string(level) + side;
      nodes += level < 39 ? MakeCategory(name, {next + "a", next + "b"}) : MakeCategory(name, {"Deepest"});
    }
  }

  Take(nodes);

  EXPECT_THAT(GetFeatures(), ElementsAre("Deepest"));
  EXPECT_LE(GetPaths("Deepest").size(), FeatureTree::kMostPlacesOfOne);
  EXPECT_EQ(mTree.GetFaults().size(), 1u);
}

TEST_F(FeatureTreeTest, GetPaths_OfManyFeaturesInManyCategories_AreKeptUpToTheMostOfAll) {
  constexpr std::size_t kCategories = FeatureTree::kMostPlacesOfOne;
  constexpr std::size_t kFeatures = FeatureTree::kMostPlaces / kCategories + 10;
  std::vector<std::string> features;
  std::vector<std::string> categories;
  std::string nodes;
  for (std::size_t i = 0; i < kFeatures; ++i)
    nodes += MakeFeature(features.emplace_back("F" + std::to_string(i)));
  for (std::size_t i = 0; i < kCategories; ++i)
    nodes += MakeCategory(categories.emplace_back("C" + std::to_string(i)), features);

  Take(nodes + MakeCategory("Root", categories));

  std::size_t places = 1; // The root's.
  for (const auto& names : {features, categories})
    for (const std::string& name : names)
      places += GetPaths(name.c_str()).size();
  EXPECT_EQ(GetFeatures().size(), kFeatures);
  // Each category has its first place in any case.
  EXPECT_THAT(places, testing::AllOf(testing::Ge(FeatureTree::kMostPlaces),
                                     testing::Le(FeatureTree::kMostPlaces + kCategories)));
  EXPECT_EQ(mTree.GetFaults().size(), 1u);
}
