#include "logic/browser/featureediting.h"
#include "editedcamera.h"

#include <gmock/gmock.h>

using testing::ElementsAre;

namespace krgui {

namespace {

using FeatureEditing = EditedCameraTest;

struct EditorRow {
  const char* feature;
  EditorKind kind;
  bool hasUpDown;
};

constexpr EditorRow kEditorRows[] = {
    {"Width", EditorKind::Number, true},
    {"Mask", EditorKind::Number, true},
    {"GevPersistentIPAddress", EditorKind::Text, false},
    {"GevMACAddress", EditorKind::Number, true},
    {"Mode", EditorKind::Choice, false},
    {"Flip", EditorKind::Choice, false},
    {"Start", EditorKind::Command, false},
    {"Key", EditorKind::Number, true},
    {"Fixed", EditorKind::None, true},
    {"Gain", EditorKind::Number, false},
    {"UserID", EditorKind::Text, false},
    {"Table", EditorKind::None, false},
};

struct TextRow {
  const char* name;
  double value;
  const char* expected;
};

constexpr TextRow kFloatRows[] = {
    {"nothing", 0, "0"},
    {"a whole number", 5000, "5000"},
    {"as wide as it is shown", 100000, "100000"},
    {"wider than it is shown", 1234567, "1234567"},
    {"a million, as it is shown", 1000000, "1e+06"},
    {"a tenth", 0.1, "0.1"},
    {"a third", 1.0 / 3, "0.3333333333333333"},
    {"more digits than are shown", 12345.678, "12345.678"},
    {"very small", 1.5e-9, "1.5e-09"},
    {"negative", -2.25, "-2.25"},
};

struct StepRow {
  const char* name;
  const char* feature;
  const char* text;
  bool isUp;
  std::optional<KrString> expected;
};

const StepRow kStepRows[] = {
    {"up", "Width", "640", true, KrString("641")},
    {"down", "Width", "640", false, KrString("639")},
    {"from what was typed, not from what the device has", "Width", "700 px", true, KrString("701")},
    {"beyond a largest value that is off the increment", "Stepped", "9", true, KrString("9")},
    {"down from such a largest value", "Stepped", "10", false, KrString("6")},
    {"hexadecimal", "Mask", "0x1f", true, KrString("0x20")},
    {"hexadecimal without a prefix", "Mask", "ff", false, KrString("0xFE")},
    {"no number", "Width", "wide", true, std::nullopt},
    {"an empty text", "Width", "", true, std::nullopt},
    {"a float", "Gain", "1", true, std::nullopt},
};

/// The text of an editor that opens now.
KrString GetFreshText(TreeItemData& aNode) {
  aNode.Refresh();
  return GetEditText(aNode, IsEditedInHexadecimal(aNode));
}

std::vector<std::string> GetTexts(const Choices& aChoices) {
  std::vector<std::string> texts;
  for (const Choice& choice : aChoices.items) {
    texts.push_back(choice.text.ToUtf8());
  }
  return texts;
}

} // namespace

TEST_F(FeatureEditing, ChooseEditor_RowsOfFeatures_GetTheEditorOfTheirType) {
  for (const EditorRow& row : kEditorRows) {
    TreeItemData& node = mCamera.Node(row.feature);

    EXPECT_EQ(ChooseEditor(node), row.kind) << row.feature;
    EXPECT_EQ(HasUpDown(node), row.hasUpDown) << row.feature;
  }
}

TEST_F(FeatureEditing, ChooseEditor_Category_GetsNone) {
  const GridItem item = mCamera.tree.AppendCategory(kNoItem, "Root", *mCamera.array->GetCategory("Root"));

  EXPECT_EQ(ChooseEditor(*mCamera.tree.FindCategory(item)), EditorKind::None);
  EXPECT_FALSE(HasUpDown(*mCamera.tree.FindCategory(item)));
}

TEST_F(FeatureEditing, ChooseEditor_CommandThatStillRuns_GetsNoneUntilItIsDone) {
  TreeItemData& node = mCamera.Node("Start");
  ASSERT_TRUE(ExecuteCommand(node).IsOK());
  EXPECT_EQ(ChooseEditor(node), EditorKind::None);

  SetInteger(kStart, 0);

  EXPECT_EQ(ChooseEditor(node), EditorKind::Command);
}

TEST_F(FeatureEditing, ChooseEditor_CommandThatIsNotAvailable_GetsNone) {
  EXPECT_EQ(ChooseEditor(mCamera.Node("Stop")), EditorKind::None);

  SetInteger(kHas, 1);

  EXPECT_EQ(ChooseEditor(mCamera.Node("Stop")), EditorKind::Command);
}

TEST_F(FeatureEditing, ChooseEditor_FeatureThatWasLockedMeanwhile_LooksAtItAnew) {
  EXPECT_EQ(ChooseEditor(mCamera.Node("Locked")), EditorKind::Number);

  SetInteger(kLock, 1);

  EXPECT_EQ(ChooseEditor(mCamera.Node("Locked")), EditorKind::None);
}

TEST_F(FeatureEditing, ListChoices_Boolean_HasFalseAndTrueWithTheCurrentOneSelected) {
  SetInteger(kFlip, 1);
  TreeItemData& node = mCamera.Node("Flip");
  (void)ChooseEditor(node);

  const Choices choices = ListChoices(node, KrGenVisibility::Beginner);

  EXPECT_THAT(GetTexts(choices), ElementsAre("False", "True"));
  EXPECT_EQ(choices.items[0].value, 0);
  EXPECT_EQ(choices.items[1].value, 1);
  EXPECT_EQ(choices.selected, 1);
}

TEST_F(FeatureEditing, ListChoices_BooleanThatWasNeverRead_HasNoneSelected) {
  EXPECT_EQ(ListChoices(mCamera.Node("Flip"), KrGenVisibility::Beginner).selected, -1);
}

TEST_F(FeatureEditing, ListChoices_Enumeration_HasWhatIsAvailableAndVisibleInItsOrder) {
  SetInteger(kMode, -3);
  mCamera.Node("Mode").Refresh();

  const Choices forBeginners = ListChoices(mCamera.Node("Mode"), KrGenVisibility::Beginner);
  const Choices forExperts = ListChoices(mCamera.Node("Mode"), KrGenVisibility::Expert);

  EXPECT_THAT(GetTexts(forBeginners), ElementsAre("Off", "Fast"));
  EXPECT_EQ(forBeginners.selected, 1);
  EXPECT_EQ(forBeginners.items[1].value, -3);
  EXPECT_STREQ(forBeginners.items[0].toolTip.CStr(), "Does nothing");
  EXPECT_THAT(GetTexts(forExperts), ElementsAre("Off", "Slow", "Fast"));
  EXPECT_EQ(forExperts.selected, 2);
}

TEST_F(FeatureEditing, ListChoices_DisplayNamesShown_HasTheseAndNamesWhereThereAreNone) {
  mCamera.tree.SetShowsDisplayNames(true);

  EXPECT_THAT(GetTexts(ListChoices(mCamera.Node("Mode"), KrGenVisibility::Beginner)),
              ElementsAre("Switched off", "Fast"));
}

TEST_F(FeatureEditing, ListChoices_CurrentEntryNotInTheList_HasNoneSelected) {
  SetInteger(kMode, 10);
  mCamera.Node("Mode").Refresh();

  EXPECT_EQ(ListChoices(mCamera.Node("Mode"), KrGenVisibility::Beginner).selected, -1);
}

TEST_F(FeatureEditing, ListChoices_OtherTypes_HaveNone) {
  EXPECT_TRUE(ListChoices(mCamera.Node("Width"), KrGenVisibility::Guru).items.empty());
}

TEST_F(FeatureEditing, GetEditText_RowsOfFloats_ReadBackAsTheSameNumber) {
  for (const TextRow& row : kFloatRows) {
    SetFloat(row.value);

    EXPECT_STREQ(GetFreshText(mCamera.Node("Gain")).CStr(), row.expected) << row.name;
  }
}

TEST_F(FeatureEditing, GetEditText_OtherTypes_IsTheValueWithoutItsUnit) {
  SetInteger(kWidth, 640);
  SetInteger(kMask, 0x1f);
  SetInteger(kAddress, 0xC0A80001);
  SetInteger(kMAC, 0x001122334455);
  SetText("Camera 1");

  EXPECT_STREQ(GetFreshText(mCamera.Node("Width")).CStr(), "640");
  EXPECT_STREQ(GetFreshText(mCamera.Node("Mask")).CStr(), "0x1F");
  EXPECT_STREQ(GetFreshText(mCamera.Node("GevPersistentIPAddress")).CStr(), "192.168.0.1");
  EXPECT_STREQ(GetFreshText(mCamera.Node("GevMACAddress")).CStr(), "73588229205");
  EXPECT_STREQ(GetFreshText(mCamera.Node("UserID")).CStr(), "Camera 1");
}

TEST_F(FeatureEditing, GetEditText_FeatureThatCannotBeRead_IsEmpty) {
  EXPECT_STREQ(GetFreshText(mCamera.Node("Key")).CStr(), "");
  EXPECT_STREQ(GetFreshText(mCamera.Node("Table")).CStr(), "");
}

TEST_F(FeatureEditing, ShownValue_NodeThatWasRead_AsksNoDevice) {
  SetInteger(kWidth, 640);
  SetInteger(kMode, -3);
  TreeItemData& width = mCamera.Node("Width");
  TreeItemData& mode = mCamera.Node("Mode");
  width.Refresh();
  const Choices choices = ListChoices(mode, KrGenVisibility::Beginner);
  mode.Refresh();
  (void)mCamera.port.TakeRecords();

  EXPECT_STREQ(GetEditText(width, false).CStr(), "640");
  EXPECT_STREQ(GetEditText(width, true).CStr(), "0x280");
  EXPECT_EQ(choices.selected, -1);
  EXPECT_EQ(FindChoice(mode, choices), 1);
  EXPECT_TRUE(mCamera.port.TakeRecords().empty());
}

TEST_F(FeatureEditing, StepText_RowsOfTexts_GiveTheTextExpected) {
  for (const StepRow& row : kStepRows) {
    StepAcceleration acceleration;

    EXPECT_EQ(StepText(mCamera.Node(row.feature), row.text, acceleration, row.isUp), row.expected) << row.name;
  }
}

TEST_F(FeatureEditing, StepText_WhileTheControlIsHeld_MovesByFourFromTheTenthOn) {
  StepAcceleration acceleration;
  KrString text = "100";
  for (int i = 0; i < 9; ++i) {
    text = StepText(mCamera.Node("Width"), text, acceleration, true).value_or("");
  }
  EXPECT_STREQ(text.CStr(), "109");

  // The tenth aligns to its step of four first.
  text = StepText(mCamera.Node("Width"), text, acceleration, true).value_or("");
  EXPECT_STREQ(text.CStr(), "112");

  acceleration.Reset();
  EXPECT_EQ(StepText(mCamera.Node("Width"), text, acceleration, true), KrString("113"));
}

TEST_F(FeatureEditing, StepText_TextThatIsNoNumber_DoesNotCountAsAStep) {
  StepAcceleration acceleration;
  for (int i = 0; i < 20; ++i) {
    EXPECT_EQ(StepText(mCamera.Node("Width"), "wide", acceleration, true), std::nullopt);
  }

  EXPECT_EQ(StepText(mCamera.Node("Width"), "640", acceleration, true), KrString("641"));
}

TEST_F(FeatureEditing, StepText_AnyStep_WritesNothing) {
  StepAcceleration acceleration;

  (void)StepText(mCamera.Node("Width"), "640", acceleration, true);

  EXPECT_EQ(mCamera.port.CountWrites(), 0U);
}

TEST_F(FeatureEditing, StepText_DeviceThatDoesNotAnswer_StepsNot) {
  mCamera.port.SetFault([](const RegisterAccessRecord&) { return KrResult(KrResult::Code::TimeLimitExceeded); });
  StepAcceleration acceleration;

  EXPECT_EQ(StepText(mCamera.Node("Bounded"), "5", acceleration, true), std::nullopt);
}

} // namespace krgui
