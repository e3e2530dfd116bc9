// Which tooltip is asked for, and what is copied of a row.

#include "logic/browser/gridtools.h"

#include "browsedcamera.h"
#include "logic/browser/rowcopying.h"
#include "logic/browser/rowgeometry.h"
#include "logic/browser/shownvalue.h"

namespace krgui {

namespace {

const std::string kCamera =
    MakeInteger("WidthRaw", 0x00) +
    "<Integer Name=\"Width\"><ToolTip>Columns</ToolTip><DisplayName>The Width</DisplayName><pValue>WidthRaw</pValue>"
    "</Integer>\n" +
    MakeInteger("Has", 0x08) +
    "<Integer Name=\"Away\"><ToolTip>Far</ToolTip><pIsAvailable>Has</pIsAvailable><pValue>WidthRaw</pValue></Integer>\n"
    "<Integer Name=\"Silent\"><pIsAvailable>Has</pIsAvailable><pValue>WidthRaw</pValue></Integer>\n"
    "<StringReg "
    "Name=\"Text\"><Address>0x40</Address><Length>16</Length><AccessMode>RW</AccessMode><pPort>Device</pPort>"
    "</StringReg>\n" +
    MakeCategory("Image", {"Width", "Away", "Silent", "Text"}, "<ToolTip>Of the image</ToolTip>") +
    MakeCategory("Root", {"Image"});

class GridTools : public testing::Test {
protected:
  BrowsedCamera mCamera{kCamera};
};

RowSnapshot MakeRow(bool aIsRead, bool aIsImplemented, bool aIsAvailable, bool aIsWritable = false) {
  RowSnapshot row;
  row.value = "7";
  row.isRead = aIsRead;
  row.access.isImplemented = aIsImplemented;
  row.access.isAvailable = aIsAvailable;
  row.access.isWritable = aIsWritable;
  return row;
}

} // namespace

TEST_F(GridTools, Feature_IsItsIndexWithTheErrorFlagOnTheIconOfAnError) {
  const GridItem width = mCamera.Node("Width").GetItem();
  const GridItem away = mCamera.Node("Away").GetItem();

  EXPECT_EQ(FindTool(mCamera.tree, width, false), 0);
  EXPECT_EQ(FindTool(mCamera.tree, away, false), 1);
  EXPECT_EQ(FindTool(mCamera.tree, away, true), 1);
  mCamera.Node("Away").SetError("Wrong");

  EXPECT_EQ(FindTool(mCamera.tree, away, true), 0x8001);
  EXPECT_EQ(FindTool(mCamera.tree, away, false), 1);
}

TEST_F(GridTools, Category_IsItsIndexAboveTheFeatures) {
  const GridItem root = mCamera.tree.AppendCategory(kNoItem, "Root", *mCamera.array->GetCategory("Root"));
  const GridItem image = mCamera.tree.AppendCategory(root, "Image", *mCamera.array->GetCategory("Image"));

  EXPECT_EQ(FindTool(mCamera.tree, root, false), 0x4000);
  EXPECT_EQ(FindTool(mCamera.tree, image, true), 0x4001);
  EXPECT_EQ(GetToolText(mCamera.tree, 0x4001), KrString("Of the image"));
}

TEST_F(GridTools, FeaturesThatWereSorted_AreAtTheirNewPlaces) {
  const GridItem width = mCamera.Node("Width").GetItem();
  const GridItem away = mCamera.Node("Away").GetItem();

  mCamera.tree.SortByName();

  EXPECT_EQ(FindTool(mCamera.tree, away, false), 0);
  EXPECT_EQ(FindTool(mCamera.tree, width, false), 1);
  EXPECT_EQ(GetToolText(mCamera.tree, 1), KrString("Columns"));
}

TEST_F(GridTools, ItemsAndNumbersThatAreNotThere_HaveNoTool) {
  (void)mCamera.Node("Width");

  EXPECT_EQ(FindTool(mCamera.tree, 4711, false), kNoTool);
  for (const std::int32_t tool : {kNoTool, 1, 0x4000, 0x8001, 0x7FFFFFFF})
    EXPECT_TRUE(GetToolText(mCamera.tree, tool).IsEmpty()) << tool;
}

TEST_F(GridTools, FeaturesBeyondTheCategoriesNumbers_AreStillTold) {
  KrGenParameter& width = *mCamera.array->Get("Width");
  for (int index = 0; index <= 0x4000; ++index)
    mCamera.tree.AppendFeature(kNoItem, "Width", width);
  const GridItem last = mCamera.tree.GetFeatures().back()->GetItem();
  mCamera.tree.AppendCategory(kNoItem, "Image", *mCamera.array->GetCategory("Image"));

  const std::int32_t tool = FindTool(mCamera.tree, last, false);

  EXPECT_NE(tool, 0x4000);
  EXPECT_EQ(GetToolText(mCamera.tree, tool), KrString("Columns"));
}

TEST_F(GridTools, Text_IsTheToolTipAndWhyTheFeatureIsLimited) {
  for (const char* name : {"Width", "Away", "Silent"})
    mCamera.Node(name).Refresh();
  const KrString reason = mCamera.Node("Away").GetAccessReason();
  ASSERT_FALSE(reason.IsEmpty());

  EXPECT_EQ(GetToolText(mCamera.tree, 0), KrString("Columns"));
  EXPECT_EQ(GetToolText(mCamera.tree, 1), KrString("Far\n\n") + reason);
  EXPECT_EQ(GetToolText(mCamera.tree, 2), mCamera.Node("Silent").GetAccessReason());
}

TEST_F(GridTools, Trouble_IsTheErrorAndWhyTheFeatureIsLimited) {
  for (const char* name : {"Width", "Away"})
    mCamera.Node(name).Refresh();
  const KrString reason = mCamera.Node("Away").GetAccessReason();

  EXPECT_EQ(GetTroubleText(mCamera.Node("Width")), KrString());
  EXPECT_EQ(GetTroubleText(mCamera.Node("Away")), reason);
  mCamera.Node("Away").SetError("Wrong");
  EXPECT_EQ(GetTroubleText(mCamera.Node("Away")), KrString("Wrong\n") + reason);
}

TEST_F(GridTools, Help_IsErrorToolTipAndReasonInOne) {
  for (const char* name : {"Width", "Away"})
    mCamera.Node(name).Refresh();
  const GridItem width = mCamera.Node("Width").GetItem();
  const GridItem away = mCamera.Node("Away").GetItem();
  const KrString reason = mCamera.Node("Away").GetAccessReason();
  const GridItem image = mCamera.tree.AppendCategory(kNoItem, "Image", *mCamera.array->GetCategory("Image"));

  EXPECT_EQ(GetHelpText(mCamera.tree, width), KrString("Columns"));
  EXPECT_EQ(GetHelpText(mCamera.tree, image), KrString("Of the image"));
  EXPECT_EQ(GetHelpText(mCamera.tree, 4711), KrString());
  mCamera.Node("Away").SetError("Wrong");
  EXPECT_EQ(GetHelpText(mCamera.tree, away), KrString("Wrong\n\nFar\n\n") + reason);
  mCamera.Node("Width").SetError(KrString(std::string(2000, 'x')));
  EXPECT_EQ(GetHelpText(mCamera.tree, width).GetLength(), 1023U);
}

TEST_F(GridTools, Text_EndsAfter1023CharactersAndSplitsNone) {
  mCamera.Node("Width").SetError(KrString(std::string(2000, 'x')));
  EXPECT_EQ(GetToolText(mCamera.tree, 0x8000).GetLength(), 1023U);

  std::string smileys;
  for (int count = 0; count < 600; ++count)
    smileys += "\xF0\x9F\x98\x80";
  mCamera.Node("Width").SetError(KrString(smileys));
  const std::u16string text = GetToolText(mCamera.tree, 0x8000).ToWide();
  EXPECT_EQ(text.size(), 1022U);
  EXPECT_EQ(text.find(u'\uFFFD'), std::u16string::npos);

  mCamera.Node("Width").SetError(KrString(std::string(1023, 'x')));
  EXPECT_EQ(GetToolText(mCamera.tree, 0x8000).GetLength(), 1023U);
}

TEST(ShownValue, Words_StandForWhatCannotBeHadOnceItWasRead) {
  const struct {
    const char* name;
    RowSnapshot row;
    const char* expected;
    bool hasValue;
  } rows[] = {{"never read", MakeRow(false, true, true), "", false},
              {"never read and not available", MakeRow(false, true, false), "", false},
              {"there", MakeRow(true, true, true), "7", true},
              {"not available", MakeRow(true, true, false), "{Not available}", false},
              {"not implemented", MakeRow(true, false, true), "{Not implemented}", false},
              {"neither", MakeRow(true, false, false), "{Not implemented}", false}};
  for (const auto& row : rows) {
    EXPECT_EQ(GetShownValue(row.row), KrString(row.expected)) << row.name;
    EXPECT_EQ(HasShownValue(row.row), row.hasValue) << row.name;
  }
}

TEST(ShownValue, Editable_IsWhatIsWritableAndAvailable) {
  EXPECT_TRUE(IsEditable(MakeRow(true, true, true, true)));
  EXPECT_FALSE(IsEditable(MakeRow(true, true, true, false)));
  EXPECT_FALSE(IsEditable(MakeRow(true, true, false, true)));
}

TEST_F(GridTools, CopiedParts_AreThoseTheRowHas) {
  TreeItemData& width = mCamera.Node("Width");
  EXPECT_EQ(GetRowPart(width, RowPart::Value), std::nullopt);
  EXPECT_EQ(GetRowPart(width, RowPart::NameAndValue), std::nullopt);

  width.Refresh();

  EXPECT_EQ(GetRowPart(width, RowPart::Name), KrString("Width"));
  EXPECT_EQ(GetRowPart(width, RowPart::Value), KrString("0"));
  EXPECT_EQ(GetRowPart(width, RowPart::NameAndValue), KrString("Width = 0"));
  EXPECT_EQ(GetRowPart(width, RowPart::Error), std::nullopt);
  width.SetError("Wrong");
  EXPECT_EQ(GetRowPart(width, RowPart::Error), KrString("Wrong"));
}

TEST_F(GridTools, CopiedRow_HasWhatThereIsOfNameValueAndError) {
  TreeItemData& width = mCamera.Node("Width");
  EXPECT_EQ(GetRowPart(width, RowPart::Row), KrString("Width"));

  width.SetError("Wrong");
  EXPECT_EQ(GetRowPart(width, RowPart::Row), KrString("Width\nWrong"));
  width.Refresh();
  EXPECT_EQ(GetRowPart(width, RowPart::Row), KrString("Width = 0"));
  width.SetError("Wrong");
  EXPECT_EQ(GetRowPart(width, RowPart::Row), KrString("Width = 0\nWrong"));
  EXPECT_EQ(GetRowPart(width, RowPart::NameAndValue), KrString("Width = 0"));
}

TEST_F(GridTools, CopiedText_KeepsItsOwnBlanks) {
  ASSERT_TRUE(mCamera.memory.Write(0x40, "a ", 3, 1000).IsOK());
  mCamera.Node("Text").Refresh();

  EXPECT_EQ(GetRowPart(mCamera.Node("Text"), RowPart::Value), KrString("a "));
}

TEST_F(GridTools, CopiedNameOfDisplayNames_IsTheOneThatIsShown) {
  mCamera.tree.SetShowsDisplayNames(true);

  EXPECT_EQ(GetRowPart(mCamera.Node("Width"), RowPart::Name), KrString("The Width"));
}

TEST_F(GridTools, CategoriesAndWhatIsNotAvailable_HaveNoValueToCopy) {
  const GridItem image = mCamera.tree.AppendCategory(kNoItem, "Image", *mCamera.array->GetCategory("Image"));
  mCamera.Node("Away").Refresh();

  EXPECT_EQ(GetRowPart(*mCamera.tree.FindCategory(image), RowPart::Name), KrString("Image"));
  EXPECT_EQ(GetRowPart(*mCamera.tree.FindCategory(image), RowPart::Value), std::nullopt);
  EXPECT_EQ(GetRowPart(mCamera.Node("Away"), RowPart::Value), std::nullopt);
}

} // namespace krgui
