#include "featurelookup.h"

#include "describedcamera.h"

#include <gmock/gmock.h>

namespace krtool {
namespace {

using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

TEST(FindNearNames, NamesThatDifferByLittle_AreFoundTheNearestFirst) {
  const std::vector<std::string> names = {"Height", "GainAuto", "Gamma", "Gain", "Width"};

  EXPECT_THAT(FindNearNames(names, "gain"), ElementsAre("Gain", "GainAuto"));
  EXPECT_THAT(FindNearNames(names, "Gian"), ElementsAre("Gain"));
  EXPECT_THAT(FindNearNames(names, "Heigth"), ElementsAre("Height"));
  EXPECT_THAT(FindNearNames(names, "WIDTH"), ElementsAre("Width"));
}

TEST(FindNearNames, PartOfANameInOrderOfLength_IsFound) {
  EXPECT_THAT(FindNearNames({"ExposureTimeAbs", "ExposureTime", "AutoExposure"}, "exposure"),
              ElementsAre("ExposureTime", "AutoExposure", "ExposureTimeAbs"));
}

TEST(FindNearNames, NothingNear_IsEmpty) {
  EXPECT_THAT(FindNearNames({"Height", "Width"}, "TriggerMode"), IsEmpty());
  EXPECT_THAT(FindNearNames({"Height", "Width"}, ""), IsEmpty());
  EXPECT_THAT(FindNearNames({}, "Width"), IsEmpty());
}

TEST(FindNearNames, ManyNear_AreFive) {
  EXPECT_EQ(FindNearNames({"Line1", "Line2", "Line3", "Line4", "Line5", "Line6"}, "Line").size(), 5U);
}

TEST(FindNearNames, NamesWithoutEnd_AreNotCompared) {
  EXPECT_THAT(FindNearNames({std::string(100'000, 'a')}, std::string(100'000, 'a')), IsEmpty());
}

class FindFeatureIn : public testing::Test {
protected:
  DescribedCamera mCamera{R"(<Category Name="Root"><pFeature>Gain</pFeature></Category>
                             <Integer Name="Gain"><Value>1</Value></Integer>
                             <Integer Name="Inner"><Value>1</Value></Integer>)"};
  KrGenParameter* mFeature = nullptr;
};

TEST_F(FindFeatureIn, Name_GivesTheFeatureOrAnyOtherNode) {
  EXPECT_TRUE(FindFeature(*mCamera.array, "Gain", mFeature).IsOK());
  EXPECT_EQ(mFeature, mCamera.array->Get("Gain"));
  EXPECT_TRUE(FindFeature(*mCamera.array, "Inner", mFeature).IsOK());
  EXPECT_EQ(mFeature, mCamera.array->Get("Inner"));
}

TEST_F(FindFeatureIn, UnknownName_FailsWithThoseThatMayBeMeant) {
  const KrResult result = FindFeature(*mCamera.array, "Gian", mFeature);

  EXPECT_EQ(result, KrResult::Code::NotFound);
  EXPECT_THAT(result.GetDescription().ToUtf8(), AllOf(HasSubstr("\"Gian\""), HasSubstr("meant: Gain?")));
}

TEST_F(FindFeatureIn, NameOfNothing_FailsWithoutAGuess) {
  const KrResult result = FindFeature(*mCamera.array, "TriggerMode", mFeature);

  EXPECT_EQ(result, KrResult::Code::NotFound);
  EXPECT_THAT(result.GetDescription().ToUtf8(), Not(HasSubstr("meant")));
}

TEST_F(FindFeatureIn, Category_IsSaidToBeOne) {
  EXPECT_THAT(FindFeature(*mCamera.array, "Root", mFeature).GetDescription().ToUtf8(), HasSubstr("is a category"));
}

} // namespace
} // namespace krtool
