#include "editedcamera.h"
#include "logic/browser/featureediting.h"

#include <gmock/gmock.h>

using testing::HasSubstr;

namespace krgui {

namespace {

class FeatureWriting : public EditedCameraTest {
protected:
  /// Opens the editor, as a user does, then writes. What the array tells of the change would be read at any moment, so
  /// the node does not hear of it.
  EditOutcome Edit(const char* aFeature, const EditInput& aInput) {
    TreeItemData& node = mCamera.Node(aFeature);
    (void)node.GetParameter()->UnregisterEventSink(&node);
    (void)ChooseEditor(node);
    return WriteEdit(node, aInput, mFailure);
  }

  KrResult mFailure;
};

EditInput Typed(EditorKind aKind, const char* aText) {
  return {.kind = aKind, .text = aText, .isDirty = true};
}

EditInput Chosen(const char* aText, std::int64_t aValue) {
  return {.kind = EditorKind::Choice, .text = aText, .isDirty = true, .choice = aValue, .hasChoice = true};
}

struct WriteRow {
  const char* name;
  const char* feature;
  EditInput input;
  EditOutcome outcome;
  const char* shown; ///< The node's value afterwards.
};

// Width is 640, Mask 255, the address 192.168.0.1, Mode Off, Flip true, Gain a third, UserID "Cam".
const std::vector<WriteRow> kWriteRows = {
    {"an integer", "Width", Typed(EditorKind::Number, "800"), EditOutcome::Written, "800"},
    {"an integer with a unit behind it", "Width", Typed(EditorKind::Number, "800 px"), EditOutcome::Written, "800 px"},
    {"the integer that is there", "Width", Typed(EditorKind::Number, "640"), EditOutcome::NothingWritten, "640 px"},
    {"no integer", "Width", Typed(EditorKind::Number, "wide"), EditOutcome::NothingWritten, "640 px"},
    {"an empty number", "Width", Typed(EditorKind::Number, ""), EditOutcome::NothingWritten, "640 px"},
    {"an edit box that the user did not change",
     "Width",
     {.kind = EditorKind::Number, .text = "800"},
     EditOutcome::NothingWritten,
     "640 px"},
    {"a choice that is shown, though nobody made it",
     "Mode",
     {.kind = EditorKind::Choice, .text = "Fast", .choice = -3, .hasChoice = true},
     EditOutcome::Written,
     "Fast"},
    {"an integer that is too large", "Width", Typed(EditorKind::Number, "1001"), EditOutcome::Failed, "640 px"},
    {"hexadecimal with a prefix", "Mask", Typed(EditorKind::Number, "0x1f"), EditOutcome::Written, "0x1f"},
    {"hexadecimal without a prefix", "Mask", Typed(EditorKind::Number, "1f"), EditOutcome::Written, "1f"},
    {"no hexadecimal number", "Mask", Typed(EditorKind::Number, "zz"), EditOutcome::NothingWritten, "0xFF "},
    {"the hexadecimal number that is there", "Mask", Typed(EditorKind::Number, "ff"), EditOutcome::NothingWritten,
     "0xFF "},
    {"an address", "GevPersistentIPAddress", Typed(EditorKind::Text, "10.0.0.7"), EditOutcome::Written, "10.0.0.7"},
    {"an address with a part that is too large", "GevPersistentIPAddress", Typed(EditorKind::Text, "192.168.1.300"),
     EditOutcome::InvalidIPAddress, "192.168.0.1"},
    {"an address of three parts", "GevPersistentIPAddress", Typed(EditorKind::Text, "192.168.1"),
     EditOutcome::InvalidIPAddress, "192.168.0.1"},
    {"the address that is there", "GevPersistentIPAddress", Typed(EditorKind::Text, "192.168.0.1"),
     EditOutcome::NothingWritten, "192.168.0.1"},
    {"an address that the user did not change",
     "GevPersistentIPAddress",
     {.kind = EditorKind::Text, .text = "bad"},
     EditOutcome::NothingWritten,
     "192.168.0.1"},
    {"a MAC address as a number", "GevMACAddress", Typed(EditorKind::Number, "258"), EditOutcome::Written, "258"},
    {"an entry", "Mode", Chosen("Fast", -3), EditOutcome::Written, "Fast"},
    {"the entry that is there", "Mode", Chosen("Off", 0), EditOutcome::NothingWritten, "Off"},
    {"no entry chosen", "Mode", {.kind = EditorKind::Choice, .text = {}}, EditOutcome::NothingWritten, "Off"},
    {"an entry that is not available", "Mode", Chosen("Old", 1), EditOutcome::Failed, "Off"},
    {"a truth value", "Flip", Chosen("False", 0), EditOutcome::Written, "False"},
    {"the truth value that is there", "Flip", Chosen("True", 1), EditOutcome::NothingWritten, "True"},
    {"a float", "Gain", Typed(EditorKind::Number, "2.5"), EditOutcome::Written, "2.5"},
    {"no float is 0", "Gain", Typed(EditorKind::Number, "loud"), EditOutcome::Written, "loud"},
    {"the float that is there", "Gain", Typed(EditorKind::Number, "0.3333333333333333"), EditOutcome::NothingWritten,
     "0.333333 dB"},
    {"a text", "UserID", Typed(EditorKind::Text, "Other"), EditOutcome::Written, "Other"},
    {"an empty text", "UserID", Typed(EditorKind::Text, ""), EditOutcome::Written, ""},
    {"the text that is there", "UserID", Typed(EditorKind::Text, "Cam"), EditOutcome::NothingWritten, "Cam"},
    {"the text that is there in other letters", "UserID", Typed(EditorKind::Text, "cam"), EditOutcome::Written, "cam"},
    {"a text that the user did not change",
     "UserID",
     {.kind = EditorKind::Text, .text = "Other"},
     EditOutcome::NothingWritten,
     "Cam"},
    {"a text that is too long", "UserID", Typed(EditorKind::Text, "A name that has more than 16 bytes"),
     EditOutcome::Failed, "Cam"},
    {"a number that cannot be written", "Fixed", Typed(EditorKind::Number, "1"), EditOutcome::NothingWritten, "77 "},
    {"a number into a text", "UserID", Typed(EditorKind::Number, "1"), EditOutcome::NothingWritten, "Cam"},
    {"a text into a number", "Width", Typed(EditorKind::Text, "1"), EditOutcome::NothingWritten, "640 px"},
    {"a choice into a number", "Width", Chosen("True", 1), EditOutcome::NothingWritten, "640 px"},
    {"a button", "Width", Typed(EditorKind::Command, "1"), EditOutcome::NothingWritten, "640 px"},
    {"no editor", "Width", Typed(EditorKind::None, "1"), EditOutcome::NothingWritten, "640 px"},
};

} // namespace

TEST_F(FeatureWriting, WriteEdit_RowsOfInputs_WriteOnlyWhatIsNewAndFits) {
  for (const WriteRow& row : kWriteRows) {
    SetInteger(kWidth, 640);
    SetInteger(kMask, 255);
    SetInteger(kAddress, 0xC0A80001);
    SetInteger(kMAC, 1);
    SetInteger(kMode, 0);
    SetInteger(kFlip, 1);
    SetInteger(kFixed, 77);
    SetFloat(1.0 / 3);
    SetText("Cam");
    (void)mCamera.port.TakeRecords();

    const EditOutcome outcome = Edit(row.feature, row.input);

    EXPECT_EQ(outcome, row.outcome) << row.name;
    EXPECT_EQ(mCamera.port.CountWrites(), row.outcome == EditOutcome::Written ? 1U : 0U) << row.name;
    EXPECT_STREQ(mCamera.Node(row.feature).GetValue(false).CStr(), row.shown) << row.name;
  }
}

TEST_F(FeatureWriting, WriteEdit_ValuesOfAllTypes_ReachTheDevice) {
  EXPECT_EQ(Edit("Mask", Typed(EditorKind::Number, "1f")), EditOutcome::Written);
  EXPECT_EQ(GetInteger(kMask), 31);
  EXPECT_EQ(Edit("GevPersistentIPAddress", Typed(EditorKind::Text, "255.168.0.1")), EditOutcome::Written);
  EXPECT_EQ(GetInteger(kAddress), 0xFFA80001);
  EXPECT_EQ(Edit("Mode", Chosen("Fast", -3)), EditOutcome::Written);
  EXPECT_EQ(GetInteger(kMode), -3);
  EXPECT_EQ(Edit("Flip", Chosen("True", 1)), EditOutcome::Written);
  EXPECT_EQ(GetInteger(kFlip), 1);
  EXPECT_EQ(Edit("Key", Typed(EditorKind::Number, "9")), EditOutcome::Written);
  EXPECT_EQ(GetInteger(kKey), 9);
  EXPECT_EQ(Edit("UserID", Typed(EditorKind::Text, "Top")), EditOutcome::Written);
  EXPECT_EQ(mCamera.Peek(kUserID, 4), (std::vector<std::uint8_t>{'T', 'o', 'p', 0}));
}

TEST_F(FeatureWriting, WriteEdit_FeatureThatCannotBeRead_IsWrittenWithoutComparing) {
  SetInteger(kKey, 9);

  EXPECT_EQ(Edit("Key", Typed(EditorKind::Number, "9")), EditOutcome::Written);
  EXPECT_EQ(mCamera.port.CountWrites(), 1U);
}

TEST_F(FeatureWriting, WriteEdit_Success_ShowsTheTextUntilItIsReadAgain) {
  EXPECT_EQ(Edit("Width", Typed(EditorKind::Number, "800")), EditOutcome::Written);
  EXPECT_STREQ(mCamera.Node("Width").GetValue(false).CStr(), "800");
  EXPECT_TRUE(mCamera.Node("Width").HasChanged());

  mCamera.Node("Width").Refresh();

  EXPECT_STREQ(mCamera.Node("Width").GetValue(false).CStr(), "800 px");
}

TEST_F(FeatureWriting, WriteEdit_DeviceThatRefuses_SaysWhyAndShowsWhatTheDeviceHas) {
  SetInteger(kWidth, 640);
  RefuseWrites();

  EXPECT_EQ(Edit("Width", Typed(EditorKind::Number, "800")), EditOutcome::Failed);

  EXPECT_THAT(mFailure.GetDescription().CStr(), HasSubstr("The device refuses."));
  EXPECT_STREQ(mCamera.Node("Width").GetValue(false).CStr(), "640 px");
}

TEST_F(FeatureWriting, ExecuteCommand_Success_WritesItsValueAndIsShownToRunOnceRefreshed) {
  ASSERT_TRUE(ExecuteCommand(mCamera.Node("Start")).IsOK());
  mCamera.Node("Start").Refresh();

  EXPECT_EQ(GetInteger(kStart), 5);
  EXPECT_STREQ(mCamera.Node("Start").GetValue(false).CStr(), "{Executing}");
  EXPECT_FALSE(mCamera.Node("Start").GetAccess().isWritable);
}

TEST_F(FeatureWriting, ExecuteCommand_DeviceThatRefuses_SaysWhyAndLeavesTheRefreshToTheCaller) {
  RefuseWrites();

  const KrResult result = ExecuteCommand(mCamera.Node("Start"));

  EXPECT_THAT(result.GetDescription().CStr(), HasSubstr("The device refuses."));
  EXPECT_FALSE(mCamera.Node("Start").IsRead());
}

TEST_F(FeatureWriting, ExecuteCommand_NoCommand_IsRefused) {
  EXPECT_EQ(ExecuteCommand(mCamera.Node("Width")), KrResult::Code::InvalidInput);
}

} // namespace krgui
