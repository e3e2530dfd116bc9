// One port's bridge: its kinds, starting it, what it says of itself, and what it saves.

#include "logic/serial/serialbridge.h"
#include "await.h"
#include "serialbridgefixture.h"

namespace krgui {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;
using namespace std::string_literals;

class Bridge : public SerialBridgeTest {
protected:
  Bridge() { mBridge.SetPort(KrDeviceSerial::Serial0); }

  void Link(const char* aPort, const KrSerialPortConfiguration& aConfiguration = {}) {
    mBridge.SetKind(BridgeKind::COMPort);
    ASSERT_TRUE(mBridge.StartCOMPort(aPort).IsOK());
    ASSERT_TRUE(mBridge.SetConfiguration(aConfiguration).IsOK());
  }
  void Publish() {
    mBridge.SetKind(BridgeKind::CameraLinkDLL);
    ASSERT_TRUE(mBridge.StartCLDLL("Model X-Serial0", false).IsOK());
  }
  Settings Save() const {
    KrPropertyList list;
    mBridge.Save(list);
    return GetSettings(list);
  }

  SerialBridge mBridge{&mDevice};
};

} // namespace

TEST_F(Bridge, New_HasNoKindAndNoPort) {
  const SerialBridge bridge(&mDevice);

  EXPECT_EQ(bridge.GetKind(), BridgeKind::None);
  EXPECT_EQ(bridge.GetPort(), KrDeviceSerial::Invalid);
  EXPECT_EQ(bridge.GetBridge(), nullptr);
  EXPECT_EQ(bridge.GetBaudRate(), 0U);
  EXPECT_FALSE(bridge.AreBaudRatesKnown());
}

TEST_F(Bridge, Kinds_HaveTheirNumbers) {
  EXPECT_EQ(static_cast<std::uint32_t>(BridgeKind::None), 0U);
  EXPECT_EQ(static_cast<std::uint32_t>(BridgeKind::COMPort), 1U);
  EXPECT_EQ(static_cast<std::uint32_t>(BridgeKind::CameraLinkDLL), 2U);
}

TEST_F(Bridge, OtherKind_MakesABridgeAndEndsTheOld) {
  Link("COM3");
  EXPECT_TRUE(mLine->IsOpen());

  mBridge.SetKind(BridgeKind::CameraLinkDLL);

  EXPECT_FALSE(mLine->IsOpen());
  ASSERT_NE(mBridge.GetBridge(), nullptr);
  EXPECT_EQ(mBridge.GetBridge()->GetState(), KrSerialBridgeState::Stopped);
  mBridge.SetKind(BridgeKind::None);
  EXPECT_EQ(mBridge.GetBridge(), nullptr);
}

TEST_F(Bridge, SameKind_GoesOn) {
  Link("COM3");
  const KrSerialBridge* const before = mBridge.GetBridge();

  mBridge.SetKind(BridgeKind::COMPort);

  EXPECT_EQ(mBridge.GetBridge(), before);
  EXPECT_TRUE(mLine->IsOpen());
  EXPECT_EQ(mLine->CountOpenings(), 1);
}

TEST_F(Bridge, OtherKind_ForgetsTheRates) {
  SetRates({"9600", "19200"});
  Link("COM3");
  ASSERT_TRUE(mBridge.AreBaudRatesKnown());

  mBridge.SetKind(BridgeKind::None);

  EXPECT_FALSE(mBridge.AreBaudRatesKnown());
  EXPECT_THAT(mBridge.GetSupportedBaudRates(), testing::Each(false));
}

TEST_F(Bridge, RatesOfTheDevice_SetTheFlagsOfListedOnesAlone) {
  SetRates({"9600", "19200", "250000"});

  Link("COM3");

  EXPECT_TRUE(mBridge.AreBaudRatesKnown());
  EXPECT_THAT(mBridge.GetSupportedBaudRates(),
              ElementsAre(true, false, true, false, false, false, false, false, false, false));
  EXPECT_EQ(mBridge.GetBaudRate(), 9600U);
}

TEST_F(Bridge, FlagsOfRates_StayWhenTheLinkIsStartedAnew) {
  SetRates({"9600"});
  Link("COM3");
  SetRates({"921600"});

  ASSERT_TRUE(mBridge.StartCOMPort("COM1").IsOK());

  EXPECT_TRUE(mBridge.GetSupportedBaudRates().front());
  EXPECT_TRUE(mBridge.GetSupportedBaudRates().back());
}

TEST_F(Bridge, DeviceThatTellsNoRates_RatesAreUnknown) {
  Link("COM3");

  EXPECT_FALSE(mBridge.AreBaudRatesKnown());
  EXPECT_THAT(mBridge.GetSupportedBaudRates(), testing::Each(false));
}

TEST_F(Bridge, LinkedPort_IsDescribed) {
  Link("COM3", {115200, 1, 8, 1});

  EXPECT_STREQ(mBridge.GetCOMPort().CStr(), "COM3");
  EXPECT_STREQ(mBridge.GetDescription().CStr(), "115200 baud, even parity, 8 bits, 1 stop bit");
  EXPECT_EQ(mBridge.GetConfiguration(), (KrSerialPortConfiguration{115200, 1, 8, 1}));
  EXPECT_STREQ(mBridge.GetName().CStr(), "");
}

TEST_F(Bridge, Descriptions_HaveTheWordsOfParityAndStopBits) {
  const struct {
    KrSerialPortConfiguration configuration;
    const char* text;
  } rows[] = {{{9600, 0, 8, 1}, "9600 baud, no parity, 8 bits, 1 stop bit"},
              {{115200, 1, 8, 2}, "115200 baud, even parity, 8 bits, 2 stop bits"},
              {{921600, 2, 7, 2}, "921600 baud, odd parity, 7 bits, 2 stop bits"}};
  Link("COM3");
  for (const auto& row : rows) {
    ASSERT_TRUE(mBridge.SetConfiguration(row.configuration).IsOK());

    EXPECT_STREQ(mBridge.GetDescription().CStr(), row.text);
  }
}

TEST_F(Bridge, KindWithoutACOMPort_IsNotSelectedAndSavesNothing) {
  mBridge.SetKind(BridgeKind::COMPort);

  EXPECT_STREQ(mBridge.GetDescription().CStr(), "Not selected");
  EXPECT_STREQ(mBridge.GetCOMPort().CStr(), "");
  EXPECT_EQ(mBridge.GetConfiguration(), KrSerialPortConfiguration());
  EXPECT_THAT(Save(), IsEmpty());
}

TEST_F(Bridge, OtherKinds_StartNothingAndAreOK) {
  EXPECT_TRUE(mBridge.StartCOMPort("COM3").IsOK());
  EXPECT_TRUE(mBridge.StartCLDLL("name", false).IsOK());
  EXPECT_TRUE(mBridge.SetConfiguration({1, 9, 9, 9}).IsOK());
  mBridge.SetKind(BridgeKind::COMPort);
  EXPECT_TRUE(mBridge.StartCLDLL("name", false).IsOK());
  mBridge.SetKind(BridgeKind::CameraLinkDLL);
  EXPECT_TRUE(mBridge.StartCOMPort("COM3").IsOK());
  EXPECT_TRUE(mBridge.SetConfiguration({1, 9, 9, 9}).IsOK());

  EXPECT_EQ(mLine->CountOpenings(), 0);
  EXPECT_THAT(krtest::BridgeHost::GetPublished(), IsEmpty());
}

TEST_F(Bridge, AnotherCOMPort_TakesTheLinkAndKeepsItsConfiguration) {
  Link("COM3", {115200, 1, 8, 2});

  ASSERT_TRUE(mBridge.StartCOMPort("COM12").IsOK());

  EXPECT_STREQ(mBridge.GetCOMPort().CStr(), "COM12");
  EXPECT_EQ(mBridge.GetConfiguration(), (KrSerialPortConfiguration{115200, 1, 8, 2}));
  EXPECT_EQ(mLine->CountOpenings(), 2);
}

TEST_F(Bridge, AnotherCOMPortThatFails_LeavesABridgeWithoutAPort) {
  Link("COM3", {115200, 1, 8, 2});

  EXPECT_EQ(mBridge.StartCOMPort("COM7").GetCode(), KrResult::Code::NotFound);

  EXPECT_NE(mBridge.GetBridge(), nullptr);
  EXPECT_STREQ(mBridge.GetCOMPort().CStr(), "");
  EXPECT_EQ(mBridge.GetConfiguration(), KrSerialPortConfiguration());
  EXPECT_FALSE(mLine->IsOpen());
}

TEST_F(Bridge, COMPortThatTheHostLacks_IsMadeWhereThatIsAllowed) {
  mBridge.SetCreatingPorts(true);

  Link("COM7");

  KrHostSerialPort port;
  EXPECT_TRUE(KrHostSerialPorts::Find("COM7", port).IsOK());
  mBridge.SetKind(BridgeKind::None);
  EXPECT_EQ(KrHostSerialPorts::Find("COM7", port).GetCode(), KrResult::Code::NotFound);
}

TEST_F(Bridge, PublishedPort_HasItsNameAndOpensTheDevicesPort) {
  Publish();

  EXPECT_STREQ(mBridge.GetName().CStr(), "Model X-Serial0");
  EXPECT_THAT(krtest::BridgeHost::GetPublished(), ElementsAre("Model X-Serial0"));
  EXPECT_TRUE(mLine->IsOpen());
  EXPECT_STREQ(mBridge.GetCOMPort().CStr(), "");
  EXPECT_STREQ(mBridge.GetDescription().CStr(), "Not selected");
}

TEST_F(Bridge, PublishedPortWhoseKindIsChosenAnew_HasNoName) {
  Publish();

  mBridge.SetKind(BridgeKind::None);
  mBridge.SetKind(BridgeKind::CameraLinkDLL);

  EXPECT_STREQ(mBridge.GetName().CStr(), "");
  EXPECT_THAT(krtest::BridgeHost::GetPublished(), IsEmpty());
  EXPECT_FALSE(mLine->IsOpen());
}

TEST_F(Bridge, NamePublishedWithoutADevicePort_OpensNone) {
  mBridge.SetKind(BridgeKind::CameraLinkDLL);

  ASSERT_TRUE(mBridge.StartCLDLL("Model X-Serial0", true).IsOK());

  EXPECT_THAT(krtest::BridgeHost::GetPublished(), ElementsAre("Model X-Serial0"));
  EXPECT_EQ(mLine->CountOpenings(), 0);
}

TEST_F(Bridge, HardCodedRate_IsTheBridgesOwn) {
  EXPECT_EQ(mBridge.SetHardCodedBaudRate(9600).GetCode(), KrResult::Code::WrongState);
  Publish();

  EXPECT_TRUE(mBridge.SetHardCodedBaudRate(57600).IsOK());

  EXPECT_EQ(mBridge.GetBaudRate(), 57600U);
}

TEST_F(Bridge, Statistics_BeginAnewWhenTheyAreReset) {
  mBridge.ResetStatistics();
  Link("COM3");
  mHost.Send(3, "hello");
  ASSERT_TRUE(krtest::Await([&] { return mBridge.GetBridge()->GetBytesSentToDevice() == 5; }));

  mBridge.ResetStatistics();

  EXPECT_EQ(mBridge.GetBridge()->GetBytesSentToDevice(), 0U);
}

TEST_F(Bridge, NoKind_SavesNothing) {
  EXPECT_THAT(Save(), IsEmpty());
}

TEST_F(Bridge, LinkedPort_SavesItsSettingsInTheirOrder) {
  Link("COM3", {115200, 1, 8, 1});

  EXPECT_THAT(Save(), ElementsAre(Pair("Serial0Port", "COM3"), Pair("Serial0COMPortBaudRate", "115200"),
                                  Pair("Serial0COMPortParity", "Even"), Pair("Serial0COMPortBitCount", "8"),
                                  Pair("Serial0COMPortStopBits", "1")));
}

TEST_F(Bridge, Parities_AreSavedAsWords) {
  Link("COM3");
  const char* const words[] = {"None", "Even", "Odd"};
  for (std::uint32_t parity = 0; parity < 3; ++parity) {
    ASSERT_TRUE(mBridge.SetConfiguration({9600, parity, 8, 1}).IsOK());

    EXPECT_EQ(Save().at(2), std::make_pair("Serial0COMPortParity"s, std::string(words[parity])));
  }
}

TEST_F(Bridge, PublishedPort_SavesItsHardCodedRate) {
  Publish();
  ASSERT_TRUE(mBridge.SetHardCodedBaudRate(57600).IsOK());

  EXPECT_THAT(Save(), ElementsAre(Pair("Serial0CLDLLBaudRate", "57600")));
}

TEST_F(Bridge, End_FreesTheDevicesPort) {
  {
    SerialBridge bridge(&mDevice);
    bridge.SetPort(KrDeviceSerial::Serial0);
    bridge.SetKind(BridgeKind::COMPort);
    ASSERT_TRUE(bridge.StartCOMPort("COM1").IsOK());
    ASSERT_TRUE(mLine->IsOpen());
  }

  EXPECT_FALSE(mLine->IsOpen());
}

} // namespace krgui
