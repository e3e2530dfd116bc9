#include "await.h"
#include "describedsettings.h"

#include <future>
#include <thread>

namespace krgenicam {
namespace {

using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

std::string MakeBanks() {
  return MakeEnum("GainSelector", 0, {"Red", "Green", "Blue"}, "<pSelected>Gain</pSelected>") +
         MakeBank("Gain", 16, "GainSelector");
}

// Since the last call.
std::vector<std::uint64_t> GetWrittenAddresses(SettingsCamera& aCamera) {
  std::vector<std::uint64_t> addresses;
  for (const RegisterAccessRecord& record : aCamera.port.TakeRecords())
    if (record.isWrite)
      addresses.push_back(record.address);
  return addresses;
}

TEST(RestoreSettings, WhatWasStored_IsThereAgainInAnotherCamera) {
  SettingsCamera stored(MakeBanks() + MakeInteger("Width", 4));
  stored.Poke(16, {10, 0, 0, 0, 20, 0, 0, 0, 30, 0, 0, 0});
  stored.SetText("Width", "77");
  stored.SetText("GainSelector", "Blue");
  ASSERT_TRUE(stored.Store().IsOK());
  SettingsCamera camera(MakeBanks() + MakeInteger("Width", 4));

  const KrResult result = camera.Restore(stored.GetSteps());

  EXPECT_TRUE(result.IsOK()) << result.GetDescription().CStr();
  EXPECT_THAT(camera.GetProblems(), IsEmpty());
  EXPECT_EQ(camera.Peek(0, 28), stored.Peek(0, 28));
}

TEST(RestoreSettings, SelectorsStandWhereTheLastLinesLeaveThem) {
  SettingsCamera camera(MakeBanks());

  EXPECT_TRUE(camera.Restore({{"GainSelector", "Red"}, {"Gain", "1"}, {"GainSelector", "Blue"}, {"Gain", "3"}}).IsOK());

  EXPECT_EQ(camera.GetText("GainSelector"), "Blue");
  EXPECT_EQ(camera.Peek(16, 12), (std::vector<std::uint8_t>{1, 0, 0, 0, 0, 0, 0, 0, 3, 0, 0, 0}));
}

// Width and offset together fill the sensor of 100: each limits the other.
std::string MakeRegion() {
  return MakeInteger("Width", 0, "<pMax>WidthMax</pMax>") + MakeInteger("OffsetX", 4, "<pMax>OffsetMax</pMax>") +
         "<IntSwissKnife Name=\"WidthMax\"><pVariable Name=\"O\">OffsetX</pVariable><Formula>100-O</Formula>"
         "</IntSwissKnife><IntSwissKnife Name=\"OffsetMax\"><pVariable Name=\"W\">Width</pVariable><Formula>100-W"
         "</Formula></IntSwissKnife>";
}

TEST(RestoreSettings, ValueThatAnotherMakesRoomFor_IsSetInALaterPass) {
  SettingsCamera camera(MakeRegion());
  camera.SetText("Width", "100");
  (void)camera.port.TakeRecords();

  const KrResult result = camera.Restore({{"OffsetX", "60"}, {"Width", "40"}});

  EXPECT_TRUE(result.IsOK()) << result.GetDescription().CStr();
  EXPECT_THAT(GetWrittenAddresses(camera), ElementsAre(0, 4));
  EXPECT_EQ(camera.GetText("OffsetX"), "60");
  EXPECT_EQ(camera.GetText("Width"), "40");
}

TEST(RestoreSettings, ValueThatIsLockedUntilAnotherIsSet_IsSetInALaterPass) {
  SettingsCamera camera(MakeInteger("Gain", 0, "<pIsLocked>GainAuto</pIsLocked>") +
                        MakeEnum("GainAuto", 4, {"Off", "On"}));
  camera.SetText("GainAuto", "On");
  (void)camera.port.TakeRecords();

  EXPECT_TRUE(camera.Restore({{"Gain", "5"}, {"GainAuto", "Off"}}).IsOK());

  EXPECT_THAT(GetWrittenAddresses(camera), ElementsAre(4, 0));
  EXPECT_EQ(camera.GetText("Gain"), "5");
}

TEST(RestoreSettings, LaterPass_SetsUnderThePositionOfTheFirst) {
  SettingsCamera camera(
      MakeEnum("Sel", 0, {"A", "B"}, "<pSelected>F</pSelected>") +
      "<Integer Name=\"F\"><Streamable>Yes</Streamable><pValue>FReg</pValue><pMax>Limit</pMax></Integer>"
      "<IntReg Name=\"FReg\"><Address>16</Address><pIndex Offset=\"4\">Sel</pIndex><Length>4</Length>"
      "<AccessMode>RW</AccessMode><pPort>Device</pPort><Endianess>LittleEndian</Endianess></IntReg>" +
      MakeInteger("Limit", 4));
  camera.SetText("Limit", "1");

  EXPECT_TRUE(
      camera.Restore({{"Sel", "A"}, {"F", "7"}, {"Sel", "B"}, {"F", "8"}, {"Sel", "A"}, {"Limit", "9"}}).IsOK());

  EXPECT_EQ(camera.Peek(16, 8), (std::vector<std::uint8_t>{7, 0, 0, 0, 8, 0, 0, 0}));
  EXPECT_EQ(camera.GetText("Sel"), "A");
}

// A chain of which each pass sets one link.
TEST(RestoreSettings, ChainOfLimits_IsFollowedToItsEnd) {
  SettingsCamera camera(MakeInteger("A", 0, "<pMax>B</pMax>") + MakeInteger("B", 4, "<pMax>C</pMax>") +
                        MakeInteger("C", 8, "<pMax>D</pMax>") + MakeInteger("D", 12));

  EXPECT_TRUE(camera.Restore({{"A", "9"}, {"B", "9"}, {"C", "9"}, {"D", "9"}}).IsOK());

  EXPECT_EQ(camera.GetText("A"), "9");
}

TEST(RestoreSettings, ValueThatStaysOutOfRange_IsNamedWithItsPositionAndTheRestIsSet) {
  SettingsCamera camera(MakeEnum("Sel", 0, {"A", "B"}, "<pSelected>F</pSelected>") +
                        MakeInteger("F", 4, "<Max>10</Max>") + MakeInteger("Width", 8));

  const KrResult result = camera.Restore({{"Sel", "B"}, {"F", "11"}, {"Width", "5"}});

  EXPECT_EQ(result, KrResult::Code::OutOfRange);
  EXPECT_THAT(camera.GetProblems(), ElementsAre(AllOf(StartsWith("F [Sel=B]: 11 is wanted"), HasSubstr("10"))));
  EXPECT_EQ(result.GetDescription(), camera.problems[0]);
  EXPECT_EQ(camera.GetText("Width"), "5");
}

TEST(RestoreSettings, UnknownNamesAndReadOnlyOnes_AreProblemsAndTheLastValueOfTheRestIsSet) {
  SettingsCamera camera(MakeInteger("Width", 0) + MakeInteger("Fixed", 4, "<ImposedAccessMode>RO</ImposedAccessMode>"));

  const KrResult result = camera.Restore({{"Nobody", "1"}, {"Fixed", "2"}, {"Width", "many"}, {"Width", "3"}});

  EXPECT_EQ(result, KrResult::Code::NotFound);
  EXPECT_THAT(camera.GetProblems(),
              ElementsAre(StartsWith("Nobody: "), AllOf(StartsWith("Fixed: 2 is wanted"), HasSubstr("Fixed"))));
  EXPECT_EQ(camera.GetText("Width"), "3");
}

TEST(RestoreSettings, EntryThatTheSelectorLacks_CostsWhatItSelectsAlone) {
  SettingsCamera camera(MakeBanks());

  const KrResult result = camera.Restore(
      {{"GainSelector", "Infrared"}, {"Gain", "9"}, {"GainSelector", "Green"}, {"Gain", "2"}, {"GainSelector", "Red"}});

  EXPECT_EQ(result, KrResult::Code::InvalidInput);
  EXPECT_THAT(camera.GetProblems(), ElementsAre(AllOf(StartsWith("Gain [GainSelector=Infrared]: 9 is wanted"),
                                                      HasSubstr("GainSelector cannot be set to Infrared"))));
  EXPECT_EQ(camera.Peek(16, 12), (std::vector<std::uint8_t>{0, 0, 0, 0, 2, 0, 0, 0, 0, 0, 0, 0}));
  EXPECT_EQ(camera.GetText("GainSelector"), "Red");
}

// Writes go to one register, reads come from another: the device keeps what it wants.
constexpr const char* kStubborn =
    "<Converter Name=\"Kept\"><Streamable>Yes</Streamable><FormulaTo>FROM</FormulaTo><FormulaFrom>7+0*TO</FormulaFrom>"
    "<pValue>KeptReg</pValue></Converter><FloatReg Name=\"KeptReg\"><Address>0</Address><Length>8</Length>"
    "<AccessMode>RW</AccessMode><pPort>Device</pPort><Endianess>LittleEndian</Endianess></FloatReg>";

TEST(RestoreSettings, DeviceThatKeepsAnotherValue_IsAProblemThatNamesBoth) {
  SettingsCamera camera(kStubborn);

  EXPECT_EQ(camera.Restore({{"Kept", "5"}}), KrResult::Code::NotSupported);

  EXPECT_THAT(camera.GetProblems(), ElementsAre("Kept: 5 was set, but the device has 7."));
}

TEST(RestoreSettings, ValueThatALaterSettingChanged_IsSetOnceMore) {
  SettingsCamera camera(MakeInteger("Exposure", 0) + MakeInteger("Rate", 4));
  bool isFirst = true;
  camera.port.SetFault([&](const RegisterAccessRecord& aRecord) {
    // The rate shortens the exposure, behind the array's back.
    if (aRecord.isWrite && aRecord.address == 4 && std::exchange(isFirst, false)) {
      const std::uint8_t shorter[4] = {1, 0, 0, 0};
      EXPECT_TRUE(camera.memory.Write(0, shorter, 4, 1000).IsOK());
    }
    return KrResult();
  });

  const KrResult result = camera.Restore({{"Exposure", "50"}, {"Rate", "30"}});

  EXPECT_TRUE(result.IsOK()) << result.GetDescription().CStr();
  EXPECT_EQ(camera.Peek(0, 1), std::vector<std::uint8_t>{50});
}

TEST(RestoreSettings, RegisterThatCannotBeWritten_IsNamedAndTheRestIsSet) {
  SettingsCamera camera(MakeInteger("A", 0) + MakeInteger("B", 4));
  camera.port.SetFault(FailAt(0, true, KrResult::Code::ProtocolError));

  EXPECT_EQ(camera.Restore({{"A", "1"}, {"B", "2"}}), KrResult::Code::ProtocolError);

  EXPECT_THAT(camera.GetProblems(), ElementsAre(AllOf(StartsWith("A: 1 is wanted"), HasSubstr("is broken"))));
  EXPECT_EQ(camera.GetText("B"), "2");
}

TEST(RestoreSettings, ConnectionThatIsLost_EndsItWithTheNumberOfWhatWasLeft) {
  SettingsCamera camera(MakeInteger("A", 0) + MakeInteger("B", 4) + MakeInteger("C", 8) + MakeInteger("D", 12));
  camera.port.SetFault([](const RegisterAccessRecord& aRecord) {
    return aRecord.address >= 4 ? KrResult(KrResult::Code::ConnectionLost, "Gone.") : KrResult();
  });

  EXPECT_EQ(camera.Restore({{"A", "1"}, {"B", "2"}, {"C", "3"}, {"D", "4"}}), KrResult::Code::ConnectionLost);

  EXPECT_THAT(camera.GetProblems(), ElementsAre(StartsWith("B: 2 is wanted"),
                                                StartsWith("2 further settings were not "
                                                           "tried"),
                                                StartsWith("1 further settings were not read back")));
}

std::string MakeCommand(const std::string& aName, int aAddress, const std::string& aAccess = "WO") {
  return "<Command Name=\"" + aName + "\"><pValue>" + aName + "Reg</pValue><CommandValue>1</CommandValue></Command>" +
         "<IntReg Name=\"" + aName + "Reg\"><Address>" + std::to_string(aAddress) +
         "</Address><Length>4</Length><AccessMode>" + aAccess +
         "</AccessMode><pPort>Device</pPort><Endianess>LittleEndian</Endianess></IntReg>";
}

TEST(RestoreSettings, Device_IsToldOfBeginAndEnd) {
  SettingsCamera camera(MakeInteger("A", 0) + MakeCommand("DeviceFeaturePersistenceStart", 100) +
                        MakeCommand("DeviceFeaturePersistenceEnd", 104) +
                        MakeCommand("DeviceRegistersStreamingStart", 108) +
                        MakeCommand("DeviceRegistersStreamingEnd", 112));

  EXPECT_TRUE(camera.Restore({{"A", "1"}}).IsOK());

  EXPECT_THAT(GetWrittenAddresses(camera), ElementsAre(100, 0, 104));
}

TEST(RestoreSettings, OlderDevice_IsToldOfTheEndEvenWhereSettingFails) {
  SettingsCamera camera(MakeInteger("A", 0, "<Max>1</Max>") + MakeCommand("DeviceRegistersStreamingStart", 108) +
                        MakeCommand("DeviceRegistersStreamingEnd", 112));

  EXPECT_EQ(camera.Restore({{"A", "2"}}), KrResult::Code::OutOfRange);

  EXPECT_THAT(GetWrittenAddresses(camera), ElementsAre(108, 112));
}

TEST(RestoreSettings, BeginThatFails_IsAProblemAndTheRestIsSet) {
  SettingsCamera camera(MakeInteger("A", 0) + MakeCommand("DeviceFeaturePersistenceStart", 100) +
                        MakeCommand("DeviceFeaturePersistenceEnd", 104));
  camera.port.SetFault(FailAt(100, true, KrResult::Code::ProtocolError));

  EXPECT_EQ(camera.Restore({{"A", "1"}}), KrResult::Code::ProtocolError);

  EXPECT_THAT(camera.GetProblems(), ElementsAre(StartsWith("DeviceFeaturePersistenceStart failed")));
  EXPECT_THAT(GetWrittenAddresses(camera), ElementsAre(100, 0, 104));
}

TEST(RestoreSettings, ValueThatIsSetOnceMore_IsSetInAFrameOfItsOwn) {
  SettingsCamera camera(MakeInteger("Exposure", 0) + MakeInteger("Rate", 4) +
                        MakeCommand("DeviceFeaturePersistenceStart", 100) +
                        MakeCommand("DeviceFeaturePersistenceEnd", 104));
  bool isFirst = true;
  camera.port.SetFault([&](const RegisterAccessRecord& aRecord) {
    // The first end has the device shorten the exposure.
    if (aRecord.isWrite && aRecord.address == 104 && std::exchange(isFirst, false)) {
      const std::uint8_t shorter[4] = {1, 0, 0, 0};
      EXPECT_TRUE(camera.memory.Write(0, shorter, 4, 1000).IsOK());
    }
    return KrResult();
  });

  const KrResult result = camera.Restore({{"Exposure", "50"}, {"Rate", "30"}});

  EXPECT_TRUE(result.IsOK()) << result.GetDescription().CStr();
  EXPECT_THAT(GetWrittenAddresses(camera), ElementsAre(100, 0, 4, 104, 100, 0, 104));
  EXPECT_EQ(camera.Peek(0, 1), std::vector<std::uint8_t>{50});
}

// Cancels when a register has been read for the third time: meanwhile it is waited for.
class CancelAtThirdRead {
public:
  CancelAtThirdRead(SettingsCamera& aCamera, std::uint64_t aAddress) : mCamera(aCamera) {
    mCamera.port.SetFault([this, aAddress](const RegisterAccessRecord& aRecord) {
      if (!aRecord.isWrite && aRecord.address == aAddress && ++mReads == 3)
        mIsWaitedFor.set_value();
      return KrResult();
    });
    mThread = std::jthread([this] {
      EXPECT_EQ(mIsWaitedFor.get_future().wait_for(krtest::GetGenerousLimit()), std::future_status::ready);
      mCamera.array->Cancel();
    });
  }

private:
  SettingsCamera& mCamera;
  int mReads = 0;
  std::promise<void> mIsWaitedFor;
  std::jthread mThread;
};

TEST(RestoreSettings, CancelledWhileTheBeginIsUnderWay_EndsItWithTheDeviceTold) {
  SettingsCamera camera(MakeInteger("A", 0) + MakeCommand("DeviceFeaturePersistenceStart", 100, "RW") +
                        MakeCommand("DeviceFeaturePersistenceEnd", 104, "RW"));
  const CancelAtThirdRead cancel(camera, 100);

  EXPECT_EQ(camera.Restore({{"A", "1"}}), KrResult::Code::Aborted);

  EXPECT_THAT(camera.GetProblems(), ElementsAre(AllOf(StartsWith("The settings are not all restored"),
                                                      HasSubstr("Start"), HasSubstr("cancel")),
                                                StartsWith("1 further settings were not tried")));
  EXPECT_THAT(GetWrittenAddresses(camera), ElementsAre(100, 104));
}

TEST(RestoreSettings, CancelledWhileTheEndIsUnderWay_TellsSoBeforeOtherProblems) {
  SettingsCamera camera(MakeInteger("A", 0) + MakeInteger("B", 4, "<Max>1</Max>") +
                        MakeCommand("DeviceFeaturePersistenceStart", 100) +
                        MakeCommand("DeviceFeaturePersistenceEnd", 104, "RW"));
  const CancelAtThirdRead cancel(camera, 104);

  EXPECT_EQ(camera.Restore({{"A", "1"}, {"B", "2"}}), KrResult::Code::Aborted);

  EXPECT_THAT(camera.GetProblems(),
              ElementsAre(AllOf(StartsWith("The settings are not all restored"), HasSubstr("End")),
                          StartsWith("B: 2 is wanted"), StartsWith("1 further settings were not read back")));
}

// What is locked by a register that is 1.
std::string MakeLocked() {
  return MakeInteger("X", 0, "<pIsLocked>Lock</pIsLocked>") + MakeInteger("Lock", 4);
}

TEST(RestoreSettings, LockedParameterThatIsAsStored_IsNoProblem) {
  SettingsCamera camera(MakeLocked());
  camera.Poke(0, {5, 0, 0, 0, 1});

  const KrResult result = camera.Restore({{"X", "5"}});

  EXPECT_TRUE(result.IsOK()) << result.GetDescription().CStr();
  EXPECT_THAT(camera.GetProblems(), IsEmpty());
  EXPECT_THAT(GetWrittenAddresses(camera), IsEmpty());
}

TEST(RestoreSettings, LockedParameterThatIsOtherThanStored_IsAProblem) {
  SettingsCamera camera(MakeLocked());
  camera.Poke(0, {5, 0, 0, 0, 1});

  EXPECT_EQ(camera.Restore({{"X", "6"}}), KrResult::Code::AccessDenied);

  EXPECT_THAT(camera.GetProblems(), ElementsAre(StartsWith("X: 6 is wanted, but was not set")));
}

TEST(RestoreSettings, ParameterThatASettingLocksAsStored_IsNoProblem) {
  SettingsCamera camera(MakeLocked());
  camera.Poke(0, {5});

  EXPECT_TRUE(camera.Restore({{"Lock", "1"}, {"X", "5"}}).IsOK());

  EXPECT_EQ(camera.Restore({{"Lock", "1"}, {"X", "6"}}), KrResult::Code::AccessDenied);
}

TEST(RestoreSettings, LockedSelectorThatStandsAsStored_IsNoProblem) {
  SettingsCamera camera(
      MakeEnum("Sel", 0, {"A", "B"}, "<ImposedAccessMode>RO</ImposedAccessMode><pSelected>F</pSelected>") +
      MakeBank("F", 16, "Sel"));
  camera.Poke(0, {1});

  const KrResult result = camera.Restore({{"Sel", "B"}, {"F", "3"}});

  EXPECT_TRUE(result.IsOK()) << result.GetDescription().CStr();
  EXPECT_EQ(camera.Peek(20, 1), std::vector<std::uint8_t>{3});
}

TEST(RestoreSettings, ParameterThatCanOnlyBeWritten_IsNotReadBack) {
  SettingsCamera camera("<IntReg Name=\"Key\"><Address>0</Address><Length>4</Length><AccessMode>WO</AccessMode>"
                        "<pPort>Device</pPort><Endianess>LittleEndian</Endianess></IntReg>");
  (void)camera.port.TakeRecords();

  EXPECT_TRUE(camera.Restore({{"Key", "7"}}).IsOK());

  EXPECT_EQ(camera.port.CountReads(), 0U);
  EXPECT_EQ(camera.Peek(0, 1), std::vector<std::uint8_t>{7});
}

TEST(RestoreSettings, NothingToRestore_IsOK) {
  SettingsCamera camera(MakeInteger("A", 0));

  EXPECT_TRUE(camera.Restore({}).IsOK());
}

// How other programs write values.
struct SpellingRow {
  const char* name;
  const char* parameter;
  const char* text;
  std::uint64_t address;
  std::vector<std::uint8_t> bytes; ///< That the device has afterwards.
};

class SettingSpelling : public testing::TestWithParam<SpellingRow> {
protected:
  static std::string MakeNodes() {
    return MakeInteger("Integer", 0) + MakeEnum("Enumeration", 4, {"Off", "On"}) +
           "<Boolean Name=\"Boolean\"><pValue>BooleanReg</pValue></Boolean><IntReg Name=\"BooleanReg\"><Address>8"
           "</Address><Length>4</Length><AccessMode>RW</AccessMode><pPort>Device</pPort><Endianess>LittleEndian"
           "</Endianess></IntReg><Float Name=\"Float\"><pValue>FloatReg</pValue></Float><FloatReg Name=\"FloatReg\">"
           "<Address>48</Address><Length>8</Length><AccessMode>RW</AccessMode><pPort>Device</pPort><Endianess>"
           "LittleEndian</Endianess></FloatReg>"
           "<Float Name=\"Coarse\"><pValue>CoarseValue</pValue><Inc>0.5</Inc></Float><Converter Name=\"CoarseValue\">"
           "<FormulaTo>ROUND(FROM*2)</FormulaTo><FormulaFrom>TO/2.0</FormulaFrom><pValue>CoarseReg</pValue></Converter>"
           "<FloatReg Name=\"Single\"><Address>16</Address><Length>4</Length><AccessMode>RW</AccessMode><pPort>Device"
           "</pPort><Endianess>LittleEndian</Endianess></FloatReg><IntReg Name=\"CoarseReg\"><Address>20</Address>"
           "<Length>4</Length><AccessMode>RW</AccessMode><pPort>Device</pPort><Endianess>LittleEndian</Endianess></"
           "IntReg>"
           "<Register Name=\"Register\"><Address>24</Address><Length>2</Length><AccessMode>RW</AccessMode><pPort>Device"
           "</pPort></Register><StringReg Name=\"String\"><Address>32</Address><Length>16</Length><AccessMode>RW"
           "</AccessMode><pPort>Device</pPort></StringReg>";
  }
};

TEST_P(SettingSpelling, IsTheSameAsWhatTheDeviceHas) {
  const SpellingRow& row = GetParam();
  SettingsCamera camera(MakeNodes());

  const KrResult result = camera.Restore({{row.parameter, row.text}});

  EXPECT_TRUE(result.IsOK()) << result.GetDescription().CStr();
  EXPECT_EQ(camera.Peek(row.address, row.bytes.size()), row.bytes);
}

const std::vector<std::uint8_t> kOneAndAHalf = {0, 0, 0, 0, 0, 0, 0xF8, 0x3F};

INSTANTIATE_TEST_SUITE_P(
    Spellings, SettingSpelling,
    testing::Values(SpellingRow{"HexInteger", "Integer", "0x10", 0, {16, 0, 0, 0}},
                    SpellingRow{"EntryByNumber", "Enumeration", "1", 4, {1, 0, 0, 0}},
                    SpellingRow{"EntryByName", "Enumeration", "On", 4, {1, 0, 0, 0}},
                    SpellingRow{"BooleanWord", "Boolean", "true", 8, {1, 0, 0, 0}},
                    SpellingRow{"BooleanWordInCapitals", "Boolean", "True", 8, {1, 0, 0, 0}},
                    SpellingRow{"BooleanDigit", "Boolean", "1", 8, {1, 0, 0, 0}},
                    SpellingRow{"FloatWithZeros", "Float", "1.500", 48, kOneAndAHalf},
                    SpellingRow{"FloatWithExponent", "Float", "15e-1", 48, kOneAndAHalf},
                    SpellingRow{"FloatThatTheDeviceRoundsToItsBits", "Single", "0.1", 16, {0xCD, 0xCC, 0xCC, 0x3D}},
                    SpellingRow{"FloatThatTheDeviceRoundsToItsIncrement", "Coarse", "1.7", 20, {3, 0, 0, 0}},
                    SpellingRow{"BytesInCapitals", "Register", "AbCD", 24, {0xAB, 0xCD}},
                    SpellingRow{"Text", "String", "a  b", 32, {'a', ' ', ' ', 'b', 0}}),
    [](const auto& aInfo) { return std::string(aInfo.param.name); });

} // namespace
} // namespace krgenicam
