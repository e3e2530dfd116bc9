// What a serial bridge refuses, and what it outlasts.

#include "bridge/portlink.h"
#include "bridgefixture.h"
#include "hostendreader.h"

#include <gmock/gmock.h>

#include <unistd.h>

#include <csignal>
#include <filesystem>
#include <future>

using krtest::Await;
using krtest::BridgeTest;
using testing::HasSubstr;

namespace {

bool Contains(const KrString& aText, const char* aPart) {
  return aText.ToUtf8().find(aPart) != std::string::npos;
}

} // namespace

TEST_F(BridgeTest, Start_RefusesWhatCannotBeBridged) {
  LinkPort();
  struct Row {
    const char* name;
    const char* port;
    KrSerialPortConfiguration configuration;
    IKrDeviceAdapter* adapter;
    KrDeviceSerial devicePort;
    KrResult::Code code;
  };
  const Row kRows[] = {
      {"no port's name", "LPT1", {}, &adapter, KrDeviceSerial::Serial0, KrResult::Code::InvalidInput},
      {"an empty name", "", {}, &adapter, KrDeviceSerial::Serial0, KrResult::Code::InvalidInput},
      {"a port that the host lacks", "COM4", {}, &adapter, KrDeviceSerial::Serial0, KrResult::Code::NotFound},
      {"no device", "COM3", {}, nullptr, KrDeviceSerial::Serial0, KrResult::Code::InvalidInput},
      {"a parity that is none", "COM3", {.parity = 3}, &adapter, KrDeviceSerial::Serial0, KrResult::Code::InvalidInput},
      {"a speed of nothing", "COM3", {.baudRate = 0}, &adapter, KrDeviceSerial::Serial0, KrResult::Code::InvalidInput},
      {"a port that the device lacks", "COM3", {}, &adapter, KrDeviceSerial::Serial1, KrResult::Code::NotSupported},
      {"no port of the device", "COM3", {}, &adapter, kNoDeviceSerial, KrResult::Code::NotSupported},
  };

  for (const Row& row : kRows) {
    SCOPED_TRACE(row.name);

    const KrResult result = bridge.Start(row.port, row.configuration, row.adapter, row.devicePort);

    EXPECT_EQ(result, row.code);
    EXPECT_FALSE(result.GetDescription().IsEmpty());
    EXPECT_EQ(bridge.GetState(), KrSerialBridgeState::Stopped);
    EXPECT_EQ(bridge.GetSerialPort(), KrString());
    EXPECT_FALSE(line->IsOpen());
  }
}

TEST_F(BridgeTest, Start_OfAStartedBridge_IsTheWrongState) {
  LinkPort();
  ASSERT_TRUE(Start().IsOK());

  EXPECT_EQ(Start(), KrResult::Code::WrongState);
  EXPECT_EQ(bridge.Start("Camera", &adapter, KrDeviceSerial::Serial0), KrResult::Code::WrongState);

  EXPECT_EQ(bridge.GetState(), KrSerialBridgeState::Running);
  EXPECT_EQ(bridge.GetSerialPort(), KrString("COM3"));
}

TEST_F(BridgeTest, Start_OfADevicePortThatAnotherBridgeHas_IsBusy) {
  LinkPort();
  ASSERT_TRUE(Start().IsOK());
  KrSerialBridge second;
  second.SetCreatingPort(true);

  EXPECT_EQ(second.Start("COM4", {}, &adapter, KrDeviceSerial::Serial0), KrResult::Code::Busy);

  EXPECT_FALSE(std::filesystem::is_symlink(host.GetLink("com4"))) << "what was made for it has gone again";
}

TEST_F(BridgeTest, Start_OfAHostsPortThatAnotherBridgeHas_IsBusy) {
  LinkPort();
  adapter.AddLine(1);
  ASSERT_TRUE(Start().IsOK());
  KrSerialBridge second;

  EXPECT_EQ(second.Start("COM3", {}, &adapter, KrDeviceSerial::Serial1), KrResult::Code::Busy);

  EXPECT_FALSE(adapter.lines[1]->IsOpen());
}

TEST_F(BridgeTest, Start_OnAPortThatAnotherBridgeMakes_IsBusy) {
  adapter.AddLine(1);
  ASSERT_TRUE(StartCreating().IsOK());
  KrSerialBridge second;

  for (const bool isCreating : {false, true}) {
    second.SetCreatingPort(isCreating);
    const KrResult started = second.Start("COM3", {}, &adapter, KrDeviceSerial::Serial1);

    EXPECT_EQ(started, KrResult::Code::Busy);
    EXPECT_THAT(started.GetDescription().ToUtf8(), HasSubstr("another bridge"));
  }
  EXPECT_FALSE(adapter.lines[1]->IsOpen());
}

TEST_F(BridgeTest, LinkOfAKilledBridge_ThatLeadsToAStrangersTerminalByNow_LeavesItAlone) {
  EXPECT_EXIT(
      {
        std::unique_ptr<krserial::PortLink> link;
        if (!krserial::PortLink::Make(host.GetFile("links"), 3, terminal.GetPath(), link).IsOK())
          _exit(1);
        kill(getpid(), SIGKILL);
      },
      testing::KilledBySignal(SIGKILL), "");
  ASSERT_TRUE(std::filesystem::exists(GetPath()));
  const KrSerialPortConfiguration strangers = PortClient(terminal.GetPath()).GetSettings().Get();
  KrStringList names;

  EXPECT_TRUE(KrHostSerialPorts::GetNames(names).IsOK());
  EXPECT_EQ(names.GetCount(), 0U);
  const KrResult started = Start({.baudRate = 115200});
  EXPECT_EQ(started, KrResult::Code::NotFound);
  EXPECT_THAT(started.GetDescription().ToUtf8(), HasSubstr("killed"));
  EXPECT_TRUE(StartCreating({.baudRate = 115200}).IsOK());

  EXPECT_NE(std::filesystem::read_symlink(GetPath()), terminal.GetPath()) << "it is the bridge's own now";
  EXPECT_EQ(PortClient(terminal.GetPath()).GetSettings().Get(), strangers);
}

TEST_F(BridgeTest, ADeviceThatIsLost_IsSaidToBe_AndStopEndsAtOnce) {
  LinkPort();
  ASSERT_TRUE(Start().IsOK());

  line->Lose();

  ASSERT_TRUE(Await([&] { return bridge.GetState() == KrSerialBridgeState::WaitingForDevice; }));
  EXPECT_THAT(bridge.GetStateText().ToUtf8(), HasSubstr("Serial0"));
  std::future<void> stopping = std::async(std::launch::async, [&] { bridge.Stop(); });
  EXPECT_EQ(stopping.wait_for(krtest::GetGenerousLimit()), std::future_status::ready);
}

TEST_F(BridgeTest, Stop_WhileTheDeviceIsAsked_MovesNoMoreBytesAndAsksNoMore) {
  LinkPort();
  ASSERT_TRUE(Start({.baudRate = 9600}).IsOK());
  adapter.Hold();
  ASSERT_TRUE(Await([&] { return adapter.CountHeld() == 1; }));
  std::future<void> stopping = std::async(std::launch::async, [&] { bridge.Stop(); });
  ASSERT_TRUE(Await([&] { return line->CountCalls() == 0; }));

  const int questions = adapter.CountQuestions();
  adapter.Release();
  stopping.get();

  EXPECT_EQ(adapter.CountQuestions(), questions) << "No question behind the one that ran.";
  EXPECT_EQ(bridge.GetState(), KrSerialBridgeState::Stopped);
  EXPECT_FALSE(line->IsOpen());
}

TEST_F(BridgeTest, ADevicePortThatFails_IsOpenedAgain) {
  LinkPort();
  ASSERT_TRUE(Start().IsOK());

  line->FailReading({KrResult::Code::SystemError, "The line is cut."});
  ASSERT_TRUE(Await([&] { return line->CountOpenings() > 1; }));
  line->FailReading({});
  ASSERT_TRUE(Await([&] { return bridge.GetState() == KrSerialBridgeState::Running && line->IsOpen(); }));
  terminal.Write("again");

  EXPECT_TRUE(Await([&] { return line->GetSent() == "again"; }));
}

TEST_F(BridgeTest, AHostsPortThatGoes_IsTakenAgainWhenItIsBack) {
  auto first = std::make_unique<krtest::PseudoTerminal>();
  host.Link("com3", first->GetPath());
  ASSERT_TRUE(Start({.baudRate = 19200}).IsOK());

  EndPort(first);
  ASSERT_TRUE(Await([&] { return bridge.GetState() == KrSerialBridgeState::WaitingForPort; }));
  EXPECT_THAT(bridge.GetStateText().ToUtf8(), HasSubstr("COM3"));
  line->Receive("meanwhile");
  ASSERT_TRUE(Await([&] { return bridge.GetBytesReceivedFromDevice() == 9; }));
  LinkPort();

  ASSERT_TRUE(Await([&] { return bridge.GetState() == KrSerialBridgeState::Running; }));
  EXPECT_EQ(terminal.Read(9), "meanwhile");
  terminal.Write("back");
  EXPECT_TRUE(Await([&] { return line->GetSent() == "back"; }));
}

TEST_F(BridgeTest, AHostsPortThatIsBack_HasTheDeviceAtItsSpeedAgain) {
  auto first = std::make_unique<krtest::PseudoTerminal>();
  host.Link("com3", first->GetPath());
  ASSERT_TRUE(Start({.baudRate = 19200}).IsOK());
  krtest::SetSpeed(*first, 115200);
  ASSERT_TRUE(Await([&] { return adapter.GetSpeed() == "Baud115200"; }));

  EndPort(first);
  ASSERT_TRUE(Await([&] { return bridge.GetState() == KrSerialBridgeState::WaitingForPort; }));
  LinkPort();
  ASSERT_TRUE(Await([&] { return bridge.GetState() == KrSerialBridgeState::Running; }));

  EXPECT_EQ(adapter.GetSpeed(), "Baud19200");
  EXPECT_EQ(PortClient(terminal.GetPath()).GetSettings().GetSpeed(), 19200U);
  krtest::SetSpeed(terminal, 115200);
  EXPECT_TRUE(Await([&] { return adapter.GetSpeed() == "Baud115200"; }));
}

TEST_F(BridgeTest, AHostsPortThatIsBackAndCannotBeTaken_IsSaidWhy) {
  auto first = std::make_unique<krtest::PseudoTerminal>();
  host.Link("com3", first->GetPath());
  ASSERT_TRUE(Start().IsOK());

  EndPort(first);
  EXPECT_TRUE(Await([&] { return Contains(bridge.GetStateText(), "where nothing is now"); }));
  host.Link("com3", "/dev/null");
  EXPECT_TRUE(Await([&] { return Contains(bridge.GetStateText(), "no serial port"); }));

  EXPECT_EQ(bridge.GetState(), KrSerialBridgeState::WaitingForPort);
  LinkPort();
  EXPECT_TRUE(Await([&] { return bridge.GetState() == KrSerialBridgeState::Running; }));
  EXPECT_EQ(bridge.GetStateText(), KrString());
}

TEST_F(BridgeTest, Stop_WhileTheHostsPortIsLost_Ends) {
  auto first = std::make_unique<krtest::PseudoTerminal>();
  host.Link("com3", first->GetPath());
  ASSERT_TRUE(Start().IsOK());
  EndPort(first);
  ASSERT_TRUE(Await([&] { return bridge.GetState() == KrSerialBridgeState::WaitingForPort; }));

  std::future<void> stopping = std::async(std::launch::async, [&] { bridge.Stop(); });

  EXPECT_EQ(stopping.wait_for(krtest::GetGenerousLimit()), std::future_status::ready);
  EXPECT_FALSE(line->IsOpen());
}

TEST_F(BridgeTest, Stop_WhileBothDirectionsAreBlocked_Ends) {
  LinkPort();
  line->SetRoom(0);
  ASSERT_TRUE(Start().IsOK());
  line->Receive(MakeMixedBytes(1 << 20, 1));
  terminal.Write("for the device");
  ASSERT_TRUE(Await([&] { return !line->GetWrites().empty() && bridge.GetBytesReceivedFromDevice() > 0; }));

  std::future<void> stopping = std::async(std::launch::async, [&] { bridge.Stop(); });

  EXPECT_EQ(stopping.wait_for(krtest::GetGenerousLimit()), std::future_status::ready);
}

TEST_F(BridgeTest, AClientThatDoesNotRead_StopsTheOtherDirectionNot) {
  ASSERT_TRUE(StartCreating().IsOK());
  const PortClient client(GetPath());
  const std::string toHost = MakeMixedBytes(1 << 20, 1);
  const std::string toDevice = MakeMixedBytes(100000, 2);
  line->Receive(toHost);

  client.Write(toDevice);

  EXPECT_TRUE(Await([&] { return line->GetSent().size() >= toDevice.size(); }));
  EXPECT_TRUE(line->GetSent() == toDevice);
  EXPECT_LT(bridge.GetBytesReceivedFromDevice(), toHost.size() / 2) << "most of it waits in the device";
}
