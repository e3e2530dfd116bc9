#include "krgenicam/krgencategory.h"

#include "changingcamera.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using testing::ElementsAre;

namespace {

constexpr char kNodes[] = R"(
<Category Name="Root" NameSpace="Standard"><pFeature>Width</pFeature><pFeature>Analog</pFeature><pFeature>Gone</pFeature>
  <pFeature>Circle</pFeature></Category>
<Category Name="Analog" NameSpace="Custom"><ToolTip>Tip</ToolTip><Description>Words</Description>
  <DisplayName>Analog Control</DisplayName><Visibility>Expert</Visibility><pFeature>Gain</pFeature></Category>
<Category Name="Gone"><pFeature>Missing</pFeature><pFeature>Below</pFeature></Category>
<Category Name="Below"><pFeature>Missing</pFeature></Category>
<Category Name="Circle"><pFeature>Circle</pFeature></Category>
<Category Name="Denied"><pIsImplemented>Zero</pIsImplemented><pFeature>Gain</pFeature></Category>
<Integer Name="Width"><Value>4</Value></Integer>
<Integer Name="Gain"><Value>1</Value></Integer>
<Integer Name="Zero"><Value>0</Value></Integer>
<Integer Name="Missing"><pIsImplemented>Zero</pIsImplemented><Value>1</Value></Integer>
)";

} // namespace

TEST(KrGenCategory, Texts_AreThoseOfTheDescription) {
  DescribedCamera camera(kNodes);
  KrGenCategory* const category = camera.array->GetCategory("Analog");
  ASSERT_NE(category, nullptr);

  KrString displayName, toolTip, description;
  KrGenNameSpace nameSpace{};
  ASSERT_TRUE(category->GetDisplayName(displayName).IsOK());
  ASSERT_TRUE(category->GetToolTip(toolTip).IsOK());
  ASSERT_TRUE(category->GetDescription(description).IsOK());
  ASSERT_TRUE(category->GetNameSpace(nameSpace).IsOK());

  EXPECT_EQ(category->GetName(), "Analog");
  EXPECT_EQ(displayName, "Analog Control");
  EXPECT_EQ(toolTip, "Tip");
  EXPECT_EQ(description, "Words");
  EXPECT_EQ(nameSpace, KrGenNameSpace::Custom);
}

TEST(KrGenCategory, GetDisplayName_WhereThereIsNone_IsTheName) {
  DescribedCamera camera(kNodes);

  EXPECT_EQ(Read(*camera.array->GetCategory("Root"), &KrGenCategory::GetVisibility), KrGenVisibility::Beginner);
  KrString displayName;
  ASSERT_TRUE(camera.array->GetCategory("Root")->GetDisplayName(displayName).IsOK());
  EXPECT_EQ(displayName, "Root");
}

TEST(KrGenCategory, IsVisible_ByLevel_FollowsItsOwnVisibility) {
  DescribedCamera camera(kNodes);
  const KrGenCategory& category = *camera.array->GetCategory("Analog");

  EXPECT_FALSE(category.IsVisible(KrGenVisibility::Beginner));
  EXPECT_TRUE(category.IsVisible(KrGenVisibility::Expert));
  EXPECT_TRUE(category.IsVisible(KrGenVisibility::Invisible));
}

TEST(KrGenCategory, IsImplemented_ByContents_NeedsAnImplementedParameterInItOrBelow) {
  struct {
    const char* name;
    bool isImplemented;
  } constexpr kRows[] = {{"Root", true}, {"Analog", true}, {"Gone", false}, {"Circle", false}, {"Denied", false}};
  DescribedCamera camera(kNodes);

  for (const auto& row : kRows)
    EXPECT_EQ(camera.array->GetCategory(row.name)->IsImplemented(), row.isImplemented) << row.name;
}

TEST(KrGenCategory, GetParametersAndGetCategories_AreTheDirectOnesInOrder) {
  DescribedCamera camera(kNodes);
  KrGenParameterList parameters;
  std::vector<KrGenCategory*> categories;

  ASSERT_TRUE(camera.array->GetCategory("Root")->GetParameters(parameters).IsOK());
  ASSERT_TRUE(camera.array->GetCategory("Root")->GetCategories(categories).IsOK());

  EXPECT_THAT(ToVector(parameters), ElementsAre(camera.array->Get("Width")));
  EXPECT_THAT(categories, ElementsAre(camera.array->GetCategory("Analog"), camera.array->GetCategory("Gone"),
                                      camera.array->GetCategory("Circle")));
}
