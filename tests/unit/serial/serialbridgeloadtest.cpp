// One port's bridge from its settings: what is taken, in which order, and every line that tells of a failure.

#include "logic/serial/serialbridge.h"
#include "refusingdriver.h"
#include "serialbridgefixture.h"

namespace krgui {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::StartsWith;

class BridgeLoading : public SerialBridgeTest {
protected:
  BridgeLoading() { mBridge.SetPort(KrDeviceSerial::Serial0); }

  bool Load(BridgeKind aKind, const Settings& aSettings) {
    mBridge.SetKind(aKind);
    mErrors.Clear();
    return mBridge.Load(MakeProperties(aSettings), mErrors);
  }
  std::string GetError() const { return mErrors.GetCount() == 1 ? mErrors[0].ToUtf8() : "not one line"; }

  SerialBridge mBridge{&mDevice};
  KrStringList mErrors;
};

constexpr auto kLink = BridgeKind::COMPort;
constexpr auto kPublished = BridgeKind::CameraLinkDLL;
const std::pair<std::string, std::string> kPort = {"Serial0Port", "COM3"};

} // namespace

TEST_F(BridgeLoading, NoKind_ReadsNothing) {
  EXPECT_TRUE(Load(BridgeKind::None, {kPort, {"Serial0COMPortParity", "?"}, {"Serial0CLDLLBaudRate", "?"}}));

  EXPECT_THAT(GetTexts(mErrors), IsEmpty());
}

TEST_F(BridgeLoading, AllSettings_AreTaken) {
  EXPECT_TRUE(Load(kLink, {kPort,
                           {"Serial0COMPortBaudRate", "115200"},
                           {"Serial0COMPortParity", "Odd"},
                           {"Serial0COMPortBitCount", "7"},
                           {"Serial0COMPortStopBits", "2"}}));

  EXPECT_THAT(GetTexts(mErrors), IsEmpty());
  EXPECT_STREQ(mBridge.GetCOMPort().CStr(), "COM3");
  EXPECT_EQ(mBridge.GetConfiguration(), (KrSerialPortConfiguration{115200, 2, 7, 2}));
  EXPECT_TRUE(mLine->IsOpen());
}

TEST_F(BridgeLoading, MissingSettings_AreDefaultOnes) {
  mBridge.SetKind(kLink);
  ASSERT_TRUE(mBridge.StartCOMPort("COM1").IsOK());
  ASSERT_TRUE(mBridge.SetConfiguration({115200, 2, 7, 2}).IsOK());

  EXPECT_TRUE(Load(kLink, {kPort, {"Serial0COMPortParity", "Even"}}));

  KrSerialPortConfiguration expected;
  expected.parity = 1;
  EXPECT_EQ(mBridge.GetConfiguration(), expected);
  EXPECT_STREQ(mBridge.GetCOMPort().CStr(), "COM3");
}

TEST_F(BridgeLoading, ParityWords_AreTaken) {
  const char* const words[] = {"None", "Even", "Odd"};
  for (std::uint32_t parity = 0; parity < 3; ++parity) {
    EXPECT_TRUE(Load(kLink, {kPort, {"Serial0COMPortParity", words[parity]}}));

    EXPECT_EQ(mBridge.GetConfiguration().parity, parity);
  }
}

TEST_F(BridgeLoading, MissingPort_IsToldAndStartsNothing) {
  EXPECT_FALSE(Load(kLink, {{"Serial0COMPortBaudRate", "115200"}, {"Serial1Port", "COM3"}}));

  EXPECT_EQ(GetError(), "Serial bridge on Serial0: Port parameter missing.");
  EXPECT_EQ(mLine->CountOpenings(), 0);
}

TEST_F(BridgeLoading, PortThatCannotBeOpened_IsToldWithCodeAndDescription) {
  EXPECT_FALSE(Load(kLink, {{"Serial0Port", "COM7"}}));

  EXPECT_THAT(GetError(), StartsWith("Serial bridge on Serial0: Unable to open serial port COM7: NotFound, "));
  EXPECT_TRUE(GetError().ends_with("."));
  EXPECT_NE(mBridge.GetBridge(), nullptr);
}

TEST_F(BridgeLoading, EmptyPortName_IsNoPort) {
  EXPECT_FALSE(Load(kLink, {{"Serial0Port", ""}}));

  EXPECT_THAT(GetError(), StartsWith("Serial bridge on Serial0: Unable to open serial port : InvalidInput, "));
}

TEST_F(BridgeLoading, BadSettings_AreToldAfterTheLinkWasStarted) {
  const struct {
    const char* key;
    const char* value;
    const char* line;
  } rows[] = {
      {"COMPortBaudRate", "fast", "Unable to parse COM port speed."},
      {"COMPortBaudRate", "", "Unable to parse COM port speed."},
      {"COMPortBaudRate", "-1", "Unable to parse COM port speed."},
      {"COMPortBaudRate", "4294967296", "Unable to parse COM port speed."},
      {"COMPortBaudRate", "18446744073709551616", "Unable to parse COM port speed."},
      {"COMPortParity", "even", "Unable to parse COM port parity."},
      {"COMPortParity", "Even ", "Unable to parse COM port parity."},
      {"COMPortParity", "1", "Unable to parse COM port parity."},
      {"COMPortBitCount", "eight", "Unable to parse COM port bit count (byte size)."},
      {"COMPortBitCount", "-8", "Unable to parse COM port bit count (byte size)."},
      {"COMPortStopBits", "1.5", "Unable to parse COM port stop bits."},
      {"COMPortStopBits", "9999999999", "Unable to parse COM port stop bits."},
      {"COMPortBaudRate", "0", "Invalid COM port configuration."},
      {"COMPortBaudRate", "4294967295", "Invalid COM port configuration."},
      {"COMPortBitCount", "9", "Invalid COM port configuration."},
      {"COMPortStopBits", "3", "Invalid COM port configuration."},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(testing::Message() << row.key << " " << row.value);
    mBridge.SetKind(BridgeKind::None);

    EXPECT_FALSE(Load(kLink, {kPort, {"Serial0" + std::string(row.key), row.value}}));

    EXPECT_EQ(GetError(), "Serial bridge on Serial0: " + std::string(row.line));
    EXPECT_STREQ(mBridge.GetCOMPort().CStr(), "COM3") << "the link runs";
    EXPECT_EQ(mBridge.GetConfiguration(), KrSerialPortConfiguration());
    EXPECT_TRUE(mLine->IsOpen());
  }
}

TEST_F(BridgeLoading, BadSettingOfALinkThatRan_LeavesItsFormerConfigurationOnTheNewPort) {
  mBridge.SetKind(kLink);
  ASSERT_TRUE(mBridge.StartCOMPort("COM1").IsOK());
  ASSERT_TRUE(mBridge.SetConfiguration({115200, 1, 8, 2}).IsOK());

  EXPECT_FALSE(Load(kLink, {kPort, {"Serial0COMPortBaudRate", "19200"}, {"Serial0COMPortParity", "even"}}));

  EXPECT_EQ(GetError(), "Serial bridge on Serial0: Unable to parse COM port parity.");
  EXPECT_STREQ(mBridge.GetCOMPort().CStr(), "COM3");
  EXPECT_EQ(mBridge.GetConfiguration(), (KrSerialPortConfiguration{115200, 1, 8, 2}));
}

TEST_F(BridgeLoading, SettingsThatTheHostsPortRefuses_AreToldAfterTheLinkWasStarted) {
  const krtest::RefusedSpeed refused(115200);

  EXPECT_FALSE(Load(kLink, {kPort, {"Serial0COMPortBaudRate", "115200"}}));

  EXPECT_THAT(GetError(), StartsWith("Serial bridge on Serial0: Unable to apply serial port configuration: "
                                     "NotSupported, Setting up COM3 ("));
  EXPECT_TRUE(GetError().ends_with("."));
  EXPECT_STREQ(mBridge.GetCOMPort().CStr(), "COM3") << "the link runs";
  EXPECT_EQ(mBridge.GetConfiguration(), KrSerialPortConfiguration());
  EXPECT_TRUE(mLine->IsOpen());
}

TEST_F(BridgeLoading, SeveralBadSettings_FirstInTheirOrderIsToldAlone) {
  EXPECT_FALSE(Load(
      kLink, {{"Serial0COMPortStopBits", "?"}, {"Serial0COMPortBitCount", "?"}, {"Serial0COMPortParity", "?"}, kPort}));

  EXPECT_EQ(GetError(), "Serial bridge on Serial0: Unable to parse COM port parity.");
}

TEST_F(BridgeLoading, SettingTwice_FirstOneCounts) {
  EXPECT_TRUE(Load(
      kLink, {kPort, {"Serial0Port", "COM7"}, {"Serial0COMPortBaudRate", "19200"}, {"Serial0COMPortBaudRate", "?"}}));

  EXPECT_EQ(mBridge.GetConfiguration().baudRate, 19200U);
}

TEST_F(BridgeLoading, SettingsOfOtherPorts_AreNotTaken) {
  EXPECT_TRUE(Load(kLink, {kPort, {"Serial1COMPortBaudRate", "?"}, {"serial0COMPortBaudRate", "?"}}));

  EXPECT_EQ(mBridge.GetConfiguration(), KrSerialPortConfiguration());
}

TEST_F(BridgeLoading, ErrorLines_NameTheDevicesPort) {
  mBridge.SetPort(KrDeviceSerial::Bulk3);

  EXPECT_FALSE(Load(kLink, {kPort}));

  EXPECT_EQ(GetError(), "Serial bridge on Bulk3: Port parameter missing.");
}

TEST_F(BridgeLoading, LinesThatWereThereBefore_Stay) {
  mBridge.SetKind(kLink);
  mErrors.Add("before");

  EXPECT_FALSE(mBridge.Load({}, mErrors));

  EXPECT_THAT(GetTexts(mErrors), ElementsAre("before", "Serial bridge on Serial0: Port parameter missing."));
}

TEST_F(BridgeLoading, PublishedPortWithoutARate_IsNotTouched) {
  EXPECT_TRUE(Load(kPublished, {kPort, {"Serial0COMPortParity", "?"}}));

  EXPECT_EQ(mBridge.GetBridge()->GetHardCodedBaudRate(), 0U);
  EXPECT_EQ(mBridge.GetBridge()->GetState(), KrSerialBridgeState::Stopped);
}

TEST_F(BridgeLoading, RateOfAPublishedPort_IsTaken) {
  EXPECT_TRUE(Load(kPublished, {{"Serial0CLDLLBaudRate", "57600"}}));

  EXPECT_EQ(mBridge.GetBridge()->GetHardCodedBaudRate(), 57600U);
  EXPECT_EQ(mBridge.GetBridge()->GetState(), KrSerialBridgeState::Stopped) << "it is not started here";
}

TEST_F(BridgeLoading, BadRateOfAPublishedPort_IsTold) {
  for (const char* value : {"", "fast", "-1", "4294967296", "0x10"}) {
    EXPECT_FALSE(Load(kPublished, {{"Serial0CLDLLBaudRate", value}})) << value;

    EXPECT_EQ(GetError(), "Serial bridge on Serial0: Unable to parse Camera Link DLL hard-coded baud rate.");
  }
}

TEST_F(BridgeLoading, RateThatCannotBe_IsToldWithCodeAndDescription) {
  EXPECT_FALSE(Load(kPublished, {{"Serial0CLDLLBaudRate", "4294967295"}}));

  EXPECT_THAT(GetError(), StartsWith("Serial bridge on Serial0: Unable to apply Camera Link DLL hard-coded baud rate: "
                                     "OutOfRange, "));
}

TEST_F(BridgeLoading, WhatWasSaved_IsLoaded) {
  ASSERT_TRUE(Load(kLink, {kPort, {"Serial0COMPortParity", "Even"}, {"Serial0COMPortStopBits", "2"}}));
  KrPropertyList saved;
  mBridge.Save(saved);
  mBridge.SetKind(BridgeKind::None);

  EXPECT_TRUE(Load(kLink, GetSettings(saved)));

  EXPECT_EQ(mBridge.GetConfiguration().parity, 1U);
  EXPECT_EQ(mBridge.GetConfiguration().stopBits, 2U);
}

TEST_F(BridgeLoading, PublishedPortWhoseRateIsKnown_ComesBackAsItWasSaved) {
  mBridge.SetKind(kPublished);
  KrPropertyList saved;
  mBridge.Save(saved);
  ASSERT_EQ(GetSettings(saved), (Settings{{"Serial0CLDLLBaudRate", "0"}}));

  EXPECT_TRUE(Load(kPublished, GetSettings(saved))) << GetError();
}

} // namespace krgui
