#include "krserial/krserialbridge.h"

#include "bridgefixture.h"
#include "hostendreader.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <future>

using krtest::Await;
using krtest::BridgeTest;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace {

constexpr std::size_t kMegabyte = std::size_t{1024} * 1024;

} // namespace

TEST_F(BridgeTest, NotStarted_KnowsNothing) {
  EXPECT_EQ(bridge.GetState(), KrSerialBridgeState::Stopped);
  EXPECT_EQ(bridge.GetStateText(), KrString());
  EXPECT_EQ(bridge.GetSerialPort(), KrString());
  EXPECT_EQ(bridge.GetSerialPortConfiguration(), KrSerialPortConfiguration());
  EXPECT_EQ(bridge.GetName(), KrString());
  EXPECT_EQ(bridge.GetBaudRate(), 0U);
  EXPECT_EQ(bridge.GetSupportedBaudRateCount(), 0U);
  EXPECT_EQ(bridge.GetSupportedBaudRate(0), 0U);
  EXPECT_EQ(bridge.GetHardCodedBaudRate(), 0U);
  EXPECT_EQ(bridge.GetBytesSentToDevice() + bridge.GetBytesReceivedFromDevice(), 0U);
  EXPECT_EQ(bridge.SetSerialPortConfiguration({}), KrResult::Code::WrongState);
  bridge.Stop();
}

TEST_F(BridgeTest, ALinkedPort_CarriesAMegabyteEachWayAtOnce) {
  LinkPort();
  ASSERT_TRUE(Start().IsOK());
  const std::string toDevice = MakeMixedBytes(kMegabyte, 1);
  const std::string toHost = MakeMixedBytes(kMegabyte, 2);
  line->Receive(toHost);

  const std::future<void> sending = std::async(std::launch::async, [&] { terminal.Write(toDevice); });
  const bool isHostServed = terminal.Read(kMegabyte) == toHost;

  EXPECT_TRUE(isHostServed);
  EXPECT_TRUE(Await([&] { return line->GetSent().size() >= kMegabyte; }));
  EXPECT_TRUE(line->GetSent() == toDevice);
  EXPECT_TRUE(Await([&] { return bridge.GetBytesSentToDevice() == kMegabyte; }));
  EXPECT_EQ(bridge.GetBytesReceivedFromDevice(), kMegabyte);
}

TEST_F(BridgeTest, AStartedBridge_SaysWhatItIsLinkedWith) {
  LinkPort();

  ASSERT_TRUE(bridge.Start("com3", {.baudRate = 19200, .parity = 2}, &adapter, KrDeviceSerial::Serial0).IsOK());

  EXPECT_EQ(bridge.GetSerialPort(), KrString("COM3"));
  EXPECT_EQ(bridge.GetSerialPortConfiguration(), (KrSerialPortConfiguration{.baudRate = 19200, .parity = 2}));
  EXPECT_EQ(bridge.GetName(), KrString());
  EXPECT_EQ(bridge.GetState(), KrSerialBridgeState::Running);
  EXPECT_EQ(bridge.GetStateText(), KrString());
  EXPECT_THAT(ListSupported(), ElementsAre(9600, 19200, 115200));
  EXPECT_EQ(bridge.GetSupportedBaudRate(3), 0U);
  EXPECT_EQ(bridge.GetBaudRate(), 19200U);
}

TEST_F(BridgeTest, Stop_GivesBothPortsFree) {
  LinkPort();
  ASSERT_TRUE(Start().IsOK());

  bridge.Stop();

  EXPECT_EQ(bridge.GetState(), KrSerialBridgeState::Stopped);
  EXPECT_EQ(bridge.GetSerialPort(), KrString());
  EXPECT_FALSE(line->IsOpen());
  KrSerialBridge other;
  EXPECT_TRUE(other.Start("COM3", {}, &adapter, KrDeviceSerial::Serial0).IsOK());
}

TEST_F(BridgeTest, Counters_OutlastTheStopAndBeginAnewWithAStart) {
  LinkPort();
  ASSERT_TRUE(Start().IsOK());
  terminal.Write("seven b");
  ASSERT_TRUE(Await([&] { return bridge.GetBytesSentToDevice() == 7; }));

  bridge.Stop();
  EXPECT_EQ(bridge.GetBytesSentToDevice(), 7U);
  ASSERT_TRUE(Start().IsOK());

  EXPECT_EQ(bridge.GetBytesSentToDevice(), 0U);
}

TEST_F(BridgeTest, ResetStatistics_CountsFromThere) {
  LinkPort();
  ASSERT_TRUE(Start().IsOK());
  terminal.Write("seven b");
  ASSERT_TRUE(Await([&] { return bridge.GetBytesSentToDevice() == 7; }));

  bridge.ResetStatistics();
  line->Receive("four");
  ASSERT_EQ(terminal.Read(4), "four");

  EXPECT_EQ(bridge.GetBytesSentToDevice(), 0U);
  EXPECT_EQ(bridge.GetBytesReceivedFromDevice(), 4U);
}

TEST_F(BridgeTest, APortThatTheHostLacks_IsMadeWhereThatIsWanted) {
  EXPECT_EQ(Start(), KrResult::Code::NotFound);
  ASSERT_TRUE(StartCreating().IsOK());
  {
    const PortClient client(GetPath());
    client.Write("question");
    ASSERT_TRUE(Await([&] { return line->GetSent() == "question"; }));
    line->Receive("answer");
    EXPECT_EQ(client.Read(6), "answer");
  }

  bridge.Stop();

  EXPECT_FALSE(std::filesystem::is_symlink(GetPath()));
}

TEST_F(BridgeTest, AMadePort_HasItsNameInUpperCase) {
  bridge.SetCreatingPort(true);

  ASSERT_TRUE(bridge.Start("com3", {}, &adapter, KrDeviceSerial::Serial0).IsOK());

  EXPECT_EQ(bridge.GetSerialPort(), KrString("COM3"));
}

TEST_F(BridgeTest, AClientsSpeed_IsTheDevices) {
  ASSERT_TRUE(StartCreating({.baudRate = 19200}).IsOK());
  ASSERT_EQ(adapter.GetSpeed(), "Baud19200");
  const PortClient client(GetPath());

  client.SetSpeed(115200);

  EXPECT_TRUE(Await([&] { return adapter.GetSpeed() == "Baud115200"; }));
  EXPECT_TRUE(Await([&] { return bridge.GetBaudRate() == 115200; }));
  EXPECT_EQ(bridge.GetStateText(), KrString());
}

TEST_F(BridgeTest, AClientsSpeedThatTheDeviceLacks_IsSaidAndNotFollowed) {
  ASSERT_TRUE(StartCreating().IsOK());
  const PortClient client(GetPath());

  client.SetSpeed(57600);

  EXPECT_TRUE(Await([&] { return !bridge.GetStateText().IsEmpty(); }));
  EXPECT_THAT(bridge.GetStateText().ToUtf8(), HasSubstr("57600"));
  EXPECT_EQ(bridge.GetState(), KrSerialBridgeState::Running);
  EXPECT_EQ(adapter.GetSpeed(), "Baud9600");
}

TEST_F(BridgeTest, TheSpeedOfALinkedPseudoTerminal_IsTheDevices) {
  LinkPort();
  ASSERT_TRUE(Start().IsOK());

  krtest::SetSpeed(terminal, 115200);

  EXPECT_TRUE(Await([&] { return adapter.GetSpeed() == "Baud115200"; }));
  EXPECT_TRUE(Await([&] { return bridge.GetBaudRate() == 115200; }));
}

TEST_F(BridgeTest, AConfigurationThatChanges_IsTheHostsPortsAndTheDevices) {
  LinkPort();
  ASSERT_TRUE(Start().IsOK());
  const KrSerialPortConfiguration changed = {.baudRate = 115200, .stopBits = 2};

  EXPECT_TRUE(bridge.SetSerialPortConfiguration(changed).IsOK());
  EXPECT_EQ(bridge.SetSerialPortConfiguration({.baudRate = 115200, .parity = 9}), KrResult::Code::InvalidInput);

  EXPECT_EQ(bridge.GetSerialPortConfiguration(), changed);
  EXPECT_EQ(adapter.GetSpeed(), "Baud115200");
  EXPECT_EQ(PortClient(GetPath()).GetSettings().GetSpeed(), 115200U);
  terminal.Write("still");
  EXPECT_TRUE(Await([&] { return line->GetSent() == "still"; }));
}

TEST_F(BridgeTest, ASpeedThatTheDeviceLacks_IsNoFailure) {
  LinkPort();

  EXPECT_TRUE(Start({.baudRate = 57600}).IsOK());
  EXPECT_TRUE(bridge.SetSerialPortConfiguration({.baudRate = 38400}).IsOK());

  EXPECT_EQ(bridge.GetBaudRate(), 9600U);
  EXPECT_EQ(bridge.GetStateText(), KrString());
}

TEST_F(BridgeTest, TheHardCodedSpeed_IsThatOfADeviceThatCannotSay) {
  adapter.HideSpeed();
  LinkPort();
  EXPECT_EQ(bridge.SetHardCodedBaudRate(4000001), KrResult::Code::OutOfRange);
  EXPECT_TRUE(bridge.SetHardCodedBaudRate(4000000).IsOK());

  ASSERT_TRUE(Start().IsOK());
  EXPECT_EQ(bridge.GetBaudRate(), 4000000U);
  EXPECT_TRUE(bridge.SetHardCodedBaudRate(57600).IsOK());

  EXPECT_EQ(bridge.GetBaudRate(), 57600U);
  EXPECT_EQ(bridge.GetHardCodedBaudRate(), 57600U);
  EXPECT_THAT(ListSupported(), IsEmpty());
  bridge.Stop();
  EXPECT_EQ(bridge.GetBaudRate(), 57600U);
}

TEST_F(BridgeTest, TheHardCodedSpeed_IsNotThatOfADeviceThatCanSay) {
  LinkPort();
  ASSERT_TRUE(bridge.SetHardCodedBaudRate(57600).IsOK());

  ASSERT_TRUE(Start().IsOK());

  EXPECT_EQ(bridge.GetBaudRate(), 9600U);
  EXPECT_EQ(bridge.GetHardCodedBaudRate(), 57600U);
}

TEST_F(BridgeTest, AHundredStartsAndStops_GiveEverythingFreeEachTime) {
  line->SetLoopback(true);
  LinkPort();

  for (int round = 0; round < 100; ++round) {
    ASSERT_TRUE(Start({.baudRate = round % 2 == 0 ? 9600U : 19200U}).IsOK());
    if (round % 3 == 0) {
      terminal.Write("ping");
      ASSERT_EQ(terminal.Read(4), "ping");
    }
    bridge.Stop();
  }

  EXPECT_EQ(line->CountOpenings(), 100);
  EXPECT_FALSE(line->IsOpen());
}

TEST_F(BridgeTest, AskingWhileItStartsAndStops_IsSafe) {
  LinkPort();
  std::atomic<bool> isOver = false;
  const std::future<std::uint64_t> asking = std::async(std::launch::async, [&] {
    std::uint64_t sum = 0;
    while (!isOver) {
      sum += bridge.GetBaudRate() + bridge.GetSupportedBaudRate(0) + bridge.GetBytesSentToDevice();
      sum += bridge.GetStateText().GetLength() + bridge.GetSerialPort().GetLength() + bridge.GetName().GetLength();
      sum += bridge.GetState() == KrSerialBridgeState::Running ? 1 : 0;
    }
    return sum;
  });

  for (int round = 0; round < 20; ++round) {
    EXPECT_TRUE(Start().IsOK());
    EXPECT_TRUE(bridge.SetHardCodedBaudRate(9600).IsOK());
    bridge.Stop();
  }
  isOver = true;
}
