#include "logic/browser/featureediting.h"

#include "browsedcamera.h"

#include <gmock/gmock.h>

#include <cstring>

using testing::ElementsAre;
using testing::HasSubstr;

namespace krgui {

namespace {

// Registers of 8 bytes, each with the feature on it.
constexpr int kWidth = 0x00;
constexpr int kMask = 0x08;
constexpr int kAddress = 0x10;
constexpr int kMAC = 0x18;
constexpr int kMode = 0x20;
constexpr int kFlip = 0x28;
constexpr int kStart = 0x30;
constexpr int kKey = 0x38;
constexpr int kFixed = 0x40;
constexpr int kGain = 0x48;
constexpr int kUserID = 0x50;
constexpr int kLock = 0x60;
constexpr int kHas = 0x68;

std::string OnRegister(const std::string& aName, const std::string& aMore = {}) {
  return "<Integer Name=\"" + aName + "\"><pValue>" + aName + "Raw</pValue>" + aMore + "</Integer>\n";
}

// A feature of every type over registers that are read anew each time.
const std::string kCamera =
    MakeInteger("WidthRaw", kWidth) + OnRegister("Width", "<Min>0</Min><Max>1000</Max><Unit>px</Unit>") +
    MakeInteger("MaskRaw", kMask) + OnRegister("Mask", "<Representation>HexNumber</Representation>") +
    MakeInteger("GevPersistentIPAddressRaw", kAddress) + OnRegister("GevPersistentIPAddress") +
    MakeInteger("GevMACAddressRaw", kMAC) + OnRegister("GevMACAddress") + MakeInteger("ModeRaw", kMode) + R"(
<Integer Name="No"><Value>0</Value></Integer>
<Enumeration Name="Mode">
  <EnumEntry Name="Off"><ToolTip>Does nothing</ToolTip><DisplayName>Switched off</DisplayName><Value>0</Value></EnumEntry>
  <EnumEntry Name="Old"><pIsAvailable>No</pIsAvailable><Value>1</Value></EnumEntry>
  <EnumEntry Name="Slow"><Visibility>Expert</Visibility><Value>10</Value></EnumEntry>
  <EnumEntry Name="Fast"><Value>-3</Value></EnumEntry>
  <pValue>ModeRaw</pValue>
</Enumeration>
)" + MakeInteger("FlipRaw", kFlip) +
    "<Boolean Name=\"Flip\"><pValue>FlipRaw</pValue></Boolean>\n" + MakeInteger("StartRaw", kStart) +
    "<Command Name=\"Start\"><pValue>StartRaw</pValue><CommandValue>5</CommandValue></Command>\n" +
    MakeInteger("Has", kHas) +
    "<Command Name=\"Stop\"><pIsAvailable>Has</pIsAvailable><pValue>StartRaw</pValue><CommandValue>6</CommandValue>"
    "</Command>\n" +
    MakeInteger("Key", kKey, "WO") + MakeInteger("Fixed", kFixed, "RO") + R"(
<FloatReg Name="GainRaw"><Address>0x48</Address><Length>8</Length><AccessMode>RW</AccessMode><pPort>Device</pPort>
  <Cachable>NoCache</Cachable><Endianess>LittleEndian</Endianess></FloatReg>
<Float Name="Gain"><pValue>GainRaw</pValue><Unit>dB</Unit></Float>
<StringReg Name="UserID"><Address>0x50</Address><Length>16</Length><AccessMode>RW</AccessMode><pPort>Device</pPort>
  <Cachable>NoCache</Cachable></StringReg>
<Register Name="Table"><Address>0x80</Address><Length>16</Length><AccessMode>RW</AccessMode><pPort>Device</pPort></Register>
)" + MakeInteger("Lock", kLock) +
    OnRegister("Stepped", "<Min>0</Min><Max>10</Max><Inc>3</Inc>") + MakeInteger("SteppedRaw", 0x70) +
    OnRegister("Bounded", "<pMax>WidthRaw</pMax>") + MakeInteger("BoundedRaw", 0x78) +
    "<Integer Name=\"Locked\"><pIsLocked>Lock</pIsLocked><pValue>WidthRaw</pValue></Integer>\n" +
    MakeCategory("Root", {"Width", "Mask", "GevPersistentIPAddress", "GevMACAddress", "Mode", "Flip", "Start", "Stop",
                          "Key", "Fixed", "Gain", "UserID", "Table", "Stepped", "Bounded", "Locked"});

class FeatureEditing : public testing::Test {
protected:
  void SetInteger(int aAddress, std::int64_t aValue) {
    ASSERT_TRUE(mCamera.memory.Write(static_cast<std::uint64_t>(aAddress), &aValue, sizeof aValue, 1000).IsOK());
  }
  void SetFloat(double aValue) { ASSERT_TRUE(mCamera.memory.Write(kGain, &aValue, sizeof aValue, 1000).IsOK()); }
  void SetText(const char* aText) {
    ASSERT_TRUE(mCamera.memory.Write(kUserID, aText, std::strlen(aText) + 1, 1000).IsOK());
  }
  std::int64_t GetInteger(int aAddress) {
    std::int64_t value = 0;
    EXPECT_TRUE(mCamera.memory.Read(static_cast<std::uint64_t>(aAddress), &value, sizeof value, 1000).IsOK());
    return value;
  }
  void RefuseWrites() {
    mCamera.port.SetFault([](const RegisterAccessRecord& access) {
      return access.isWrite ? KrResult(KrResult::Code::AccessDenied, "The device refuses.") : KrResult();
    });
  }
  /// Opens the editor, as a user does, then writes.
  EditOutcome Edit(const char* aFeature, const EditInput& aInput) {
    TreeItemData& node = mCamera.Node(aFeature);
    (void)ChooseEditor(node);
    return WriteEdit(node, aInput, mFailure);
  }

  BrowsedCamera mCamera{kCamera};
  KrResult mFailure;
};

EditInput Typed(EditorKind aKind, const char* aText) {
  return {.kind = aKind, .text = aText, .isDirty = true};
}

EditInput Chosen(const char* aText, std::int64_t aValue) {
  return {.kind = EditorKind::Choice, .text = aText, .choice = aValue, .hasChoice = true};
}

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

  EXPECT_EQ(ListChoices(mCamera.Node("Mode"), KrGenVisibility::Beginner).selected, -1);
}

TEST_F(FeatureEditing, ListChoices_OtherTypes_HaveNone) {
  EXPECT_TRUE(ListChoices(mCamera.Node("Width"), KrGenVisibility::Guru).items.empty());
}

TEST_F(FeatureEditing, GetEditText_RowsOfFloats_ReadBackAsTheSameNumber) {
  for (const TextRow& row : kFloatRows) {
    SetFloat(row.value);

    EXPECT_STREQ(GetEditText(mCamera.Node("Gain")).CStr(), row.expected) << row.name;
  }
}

TEST_F(FeatureEditing, GetEditText_OtherTypes_IsTheValueWithoutItsUnit) {
  SetInteger(kWidth, 640);
  SetInteger(kMask, 0x1f);
  SetInteger(kAddress, 0xC0A80001);
  SetInteger(kMAC, 0x001122334455);
  SetText("Camera 1");

  EXPECT_STREQ(GetEditText(mCamera.Node("Width")).CStr(), "640");
  EXPECT_STREQ(GetEditText(mCamera.Node("Mask")).CStr(), "0x1F");
  EXPECT_STREQ(GetEditText(mCamera.Node("GevPersistentIPAddress")).CStr(), "192.168.0.1");
  EXPECT_STREQ(GetEditText(mCamera.Node("GevMACAddress")).CStr(), "73588229205");
  EXPECT_STREQ(GetEditText(mCamera.Node("UserID")).CStr(), "Camera 1");
}

TEST_F(FeatureEditing, GetEditText_FeatureThatCannotBeRead_IsEmpty) {
  EXPECT_STREQ(GetEditText(mCamera.Node("Key")).CStr(), "");
  EXPECT_STREQ(GetEditText(mCamera.Node("Table")).CStr(), "");
}

TEST_F(FeatureEditing, WriteEdit_RowsOfInputs_WriteOnlyWhatIsNewAndFits) {
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

TEST_F(FeatureEditing, WriteEdit_ValuesOfAllTypes_ReachTheDevice) {
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

TEST_F(FeatureEditing, WriteEdit_FeatureThatCannotBeRead_IsWrittenWithoutComparing) {
  SetInteger(kKey, 9);

  EXPECT_EQ(Edit("Key", Typed(EditorKind::Number, "9")), EditOutcome::Written);
  EXPECT_EQ(mCamera.port.CountWrites(), 1U);
}

TEST_F(FeatureEditing, WriteEdit_Success_ShowsTheTextUntilItIsReadAgain) {
  EXPECT_EQ(Edit("Width", Typed(EditorKind::Number, "800")), EditOutcome::Written);
  EXPECT_STREQ(mCamera.Node("Width").GetValue(false).CStr(), "800");
  EXPECT_TRUE(mCamera.Node("Width").HasChanged());

  mCamera.Node("Width").Refresh();

  EXPECT_STREQ(mCamera.Node("Width").GetValue(false).CStr(), "800 px");
}

TEST_F(FeatureEditing, WriteEdit_DeviceThatRefuses_SaysWhyAndShowsWhatTheDeviceHas) {
  SetInteger(kWidth, 640);
  RefuseWrites();

  EXPECT_EQ(Edit("Width", Typed(EditorKind::Number, "800")), EditOutcome::Failed);

  EXPECT_THAT(mFailure.GetDescription().CStr(), HasSubstr("The device refuses."));
  EXPECT_STREQ(mCamera.Node("Width").GetValue(false).CStr(), "640 px");
}

TEST_F(FeatureEditing, ExecuteCommand_Success_WritesItsValueAndShowsThatItRuns) {
  ASSERT_TRUE(ExecuteCommand(mCamera.Node("Start")).IsOK());

  EXPECT_EQ(GetInteger(kStart), 5);
  EXPECT_STREQ(mCamera.Node("Start").GetValue(false).CStr(), "{Executing}");
  EXPECT_FALSE(mCamera.Node("Start").GetAccess().isWritable);
}

TEST_F(FeatureEditing, ExecuteCommand_DeviceThatRefuses_SaysWhyAndRefreshes) {
  RefuseWrites();

  const KrResult result = ExecuteCommand(mCamera.Node("Start"));

  EXPECT_THAT(result.GetDescription().CStr(), HasSubstr("The device refuses."));
  EXPECT_TRUE(mCamera.Node("Start").IsRead());
}

TEST_F(FeatureEditing, ExecuteCommand_NoCommand_IsRefused) {
  EXPECT_EQ(ExecuteCommand(mCamera.Node("Width")), KrResult::Code::InvalidInput);
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
