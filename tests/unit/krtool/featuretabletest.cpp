#include "featuretable.h"

#include "describedcamera.h"

#include <gmock/gmock.h>

#include <sstream>

namespace krtool {
namespace {

using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;

using Fields = std::vector<std::string>;

Fields Split(const std::string& aLine, char aSeparator) {
  Fields fields(1);
  for (const char byte : aLine)
    if (byte == aSeparator)
      fields.emplace_back();
    else
      fields.back() += byte;
  return fields;
}

class FeatureTable : public testing::Test {
protected:
  // The table without its headings, each line by its fields.
  std::vector<Fields> Write(const FeatureFilter& aFilter = {}) {
    std::ostringstream out;
    mResult = WriteFeatureTable(*mCamera.array, aFilter, out);
    mText = out.str();
    std::vector<Fields> lines;
    for (const std::string& line : Split(mText, '\n'))
      if (!line.empty() && !line.starts_with("path\t"))
        lines.push_back(Split(line, '\t'));
    return lines;
  }
  // "category name" of each line.
  Fields WritePlaces(const FeatureFilter& aFilter = {}) {
    Fields places;
    for (const Fields& fields : Write(aFilter))
      places.push_back(fields[0] + " " + fields[1]);
    return places;
  }

  DescribedCamera mCamera{R"(
    <Category Name="Root"><pFeature>Format</pFeature><pFeature>Gain</pFeature><pFeature>Maker</pFeature></Category>
    <Category Name="Format"><pFeature>Width</pFeature><pFeature>Region</pFeature></Category>
    <Category Name="Region"><pFeature>Offset</pFeature><pFeature>Gain</pFeature></Category>
    <Category Name="Maker"><Visibility>Expert</Visibility><pFeature>Simple</pFeature><pFeature>Key</pFeature></Category>
    <Integer Name="Width"><Value>64</Value><Min>16</Min><Max>640</Max><Inc>8</Inc><Unit>px</Unit></Integer>
    <Integer Name="Offset"><Visibility>Guru</Visibility><ImposedAccessMode>RO</ImposedAccessMode><Value>1</Value></Integer>
    <Float Name="Gain"><Visibility>Expert</Visibility><Value>1.5</Value><Min>0</Min><Max>10</Max></Float>
    <Integer Name="Simple"><Value>1</Value></Integer>
    <Integer Name="Key"><Visibility>Invisible</Visibility><Value>1</Value></Integer>
    <Integer Name="Hidden"><Value>1</Value></Integer>)"};
  KrResult mResult;
  std::string mText;
};

TEST_F(FeatureTable, Headings_AreTheFirstLineAndEveryLineHasAsManyFields) {
  const std::vector<Fields> lines = Write();

  EXPECT_TRUE(mResult.IsOK());
  EXPECT_THAT(mText,
              testing::StartsWith("path\tname\ttype\tvisibility\taccess\tvalue\tunit\tmin\tmax\tincrement\terror\n"));
  ASSERT_EQ(lines.size(), 6U);
  for (const Fields& fields : lines)
    EXPECT_EQ(fields.size(), 11U);
}

TEST_F(FeatureTable, Line_HoldsAllOfAFeature) {
  EXPECT_THAT(Write()[1],
              ElementsAre("Root\\Format", "Width", "Integer", "Beginner", "RW", "64", "px", "16", "640", "8", ""));
}

TEST_F(FeatureTable, Features_StandOnceForEachPlaceInTheOrderOfTheTree) {
  EXPECT_THAT(WritePlaces(), ElementsAre("Root Gain", "Root\\Format Width", "Root\\Format\\Region Offset",
                                         "Root\\Format\\Region Gain", "Root\\Maker Simple", "Root\\Maker Key"));
}

TEST_F(FeatureTable, Category_BringsWhatIsBelowIt) {
  EXPECT_THAT(WritePlaces({.category = "Format"}),
              ElementsAre("Root\\Format Width", "Root\\Format\\Region Offset", "Root\\Format\\Region Gain"));
  EXPECT_THAT(WritePlaces({.category = "Region"}),
              ElementsAre("Root\\Format\\Region Offset", "Root\\Format\\Region Gain"));
}

TEST_F(FeatureTable, Path_BringsWhatIsBelowIt) {
  const auto ofRegion = ElementsAre("Root\\Format\\Region Offset", "Root\\Format\\Region Gain");

  EXPECT_THAT(WritePlaces({.category = "Root\\Format\\Region"}), ofRegion);
  EXPECT_THAT(WritePlaces({.category = "Format\\Region"}), ofRegion);
  EXPECT_THAT(WritePlaces({.category = "Root\\Maker"}), ElementsAre("Root\\Maker Simple", "Root\\Maker Key"));
}

TEST_F(FeatureTable, PathThatIsNone_FailsWithTheCategoriesThereAre) {
  for (const char* path : {"Root\\Region", "Format\\", "\\", "Root\\Format\\Width"}) {
    Write({.category = path});

    EXPECT_EQ(mResult, KrResult::Code::NotFound) << path;
    EXPECT_EQ(mText, "") << path;
  }
}

TEST_F(FeatureTable, UnknownCategory_FailsWithThoseThereAre) {
  Write({.category = "Formats"});

  EXPECT_EQ(mResult, KrResult::Code::NotFound);
  EXPECT_THAT(mResult.GetDescription().ToUtf8(),
              AllOf(HasSubstr("\"Formats\""), HasSubstr("Root, Format, Region, Maker.")));
  EXPECT_EQ(mText, "");
}

TEST_F(FeatureTable, Visibility_CountsForFeaturesAndForTheirCategories) {
  EXPECT_THAT(WritePlaces({.visibility = KrGenVisibility::Beginner}), ElementsAre("Root\\Format Width"));
  EXPECT_THAT(WritePlaces({.visibility = KrGenVisibility::Expert}),
              ElementsAre("Root Gain", "Root\\Format Width", "Root\\Format\\Region Gain", "Root\\Maker Simple"));
  EXPECT_THAT(WritePlaces({.visibility = KrGenVisibility::Guru}), testing::Not(testing::Contains("Root\\Maker Key")));
}

TEST_F(FeatureTable, Words_AreThoseOfTheStandard) {
  const std::vector<Fields> lines = Write();

  EXPECT_THAT(lines[0], testing::IsSupersetOf({"Float", "Expert", "RW"}));
  EXPECT_THAT(lines[2], testing::IsSupersetOf({"Integer", "Guru", "RO"}));
}

TEST_F(FeatureTable, DescriptionWithoutRoot_ListsFromTheCategoriesThatNobodyHolds) {
  DescribedCamera camera(R"(<Category Name="Top"><pFeature>Width</pFeature></Category>
                            <Integer Name="Width"><Value>1</Value></Integer>)");
  std::ostringstream out;

  EXPECT_TRUE(WriteFeatureTable(*camera.array, {}, out).IsOK());

  EXPECT_THAT(out.str(), HasSubstr("\nTop\tWidth\t"));
}

TEST_F(FeatureTable, ReasonOfTheDevice_StaysInItsField) {
  DescribedCamera camera(R"(<Category Name="Root"><pFeature>Width</pFeature></Category>
    <IntReg Name="Width"><Address>0</Address><Length>4</Length><AccessMode>RW</AccessMode><pPort>Device</pPort>
    <Endianess>LittleEndian</Endianess></IntReg>)");
  camera.port.SetFault(
      [](const RegisterAccessRecord&) { return KrResult(KrResult::Code::ProtocolError, "It said:\n\tno\x1B[31m."); });
  std::ostringstream out;

  EXPECT_TRUE(WriteFeatureTable(*camera.array, {}, out).IsOK());

  const Fields fields = Split(Split(out.str(), '\n')[1], '\t');
  ASSERT_EQ(fields.size(), 11U);
  EXPECT_EQ(fields[5], "");
  EXPECT_THAT(fields[10], HasSubstr("It said:??no?[31m."));
}

} // namespace
} // namespace krtool
