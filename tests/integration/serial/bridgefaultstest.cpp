// What may happen to a bridge between a program and a camera.

#include "await.h"
#include "bridgelab.h"
#include "numberedlines.h"
#include "rawend.h"

#include <gmock/gmock.h>

#include <optional>
#include <thread>

using krtest::SocatLine;
using krtest::SocatProcess;
using testing::EndsWith;

namespace {

constexpr std::size_t kMuch = 4'000'000;
// What the bridge may hold of one direction (64 KiB), what the simulated port and the pseudo-terminals may, and a block
// that is on its way.
constexpr std::size_t kHeldAtMost = 256 * 1024;
const std::string kAnswer = "Simulated Instrument,S1-Serial0\r\n";

} // namespace

TEST_F(BridgedCamera, CameraVanishes_IsSaidAndTheProgramKeepsItsPort) {
  Start("COM9", KrDeviceSerial::Serial0);
  SocatProcess client = MakeClient("COM9");
  client.Send("*IDN?\r");
  ASSERT_EQ(client.Await(kAnswer.size()), kAnswer);

  mFaults->Disappear();

  EXPECT_TRUE(AwaitState(KrSerialBridgeState::WaitingForDevice));
  EXPECT_FALSE(mBridge.GetStateText().IsEmpty());
  EXPECT_TRUE(std::filesystem::is_symlink(GetLink("com9")));
}

TEST_F(BridgedCamera, CameraVanishesWhileItTakesNothing_IsSaidAndTheBridgeCanBeStopped) {
  const RawLine device(GetLine());
  Start("COM9", KrDeviceSerial::Serial1);
  SocatProcess client = MakeClient("COM9");
  client.Send(krtest::MakeNumberedLines(kMuch));
  ASSERT_TRUE(krtest::Await([&] { return mBridge.GetBytesSentToDevice() > 0; }));

  mFaults->Disappear();

  EXPECT_TRUE(AwaitState(KrSerialBridgeState::WaitingForDevice));
  EXPECT_LT(mBridge.GetBytesSentToDevice(), kMuch);
  mBridge.Stop();
  EXPECT_EQ(mBridge.GetState(), KrSerialBridgeState::Stopped);
}

TEST_F(BridgedCamera, TtyVanishesAndReturns_IsTakenAgain) {
  auto client = std::make_optional<SocatLine>(GetLink("com3"));
  Start("COM3", KrDeviceSerial::Serial0);
  client->Send("*IDN?\r");
  ASSERT_EQ(client->Await(kAnswer.size()), kAnswer);

  client.reset();
  EXPECT_TRUE(AwaitState(KrSerialBridgeState::WaitingForPort));
  EXPECT_FALSE(mBridge.GetStateText().IsEmpty());
  client.emplace(GetLink("com3"));
  EXPECT_TRUE(AwaitState(KrSerialBridgeState::Running));

  client->Send("*IDN?\r");
  EXPECT_THAT(client->Await(kAnswer.size()), EndsWith(kAnswer));
}

TEST_F(BridgedCamera, ProgramThatStopsReading_HoldsUpItsOwnDirectionAlone) {
  const RawLine device(GetLine());
  Start("COM9", KrDeviceSerial::Serial1);
  const RawEnd client(GetPath("COM9"));
  const std::string fromDevice = krtest::MakeNumberedLines(kMuch);
  const std::string toDevice = krtest::MakeNumberedLines(kMuch, 1'000'000);

  const std::jthread deviceWriter([&] { device.Write(fromDevice); });
  const std::jthread clientWriter([&] { client.Write(toDevice); });

  EXPECT_TRUE(device.Read(kMuch) == toDevice);
  EXPECT_LE(mBridge.GetBytesReceivedFromDevice(), kHeldAtMost);
  EXPECT_TRUE(client.Read(kMuch) == fromDevice);
  EXPECT_TRUE(AwaitCounters(kMuch, kMuch));
}

TEST_F(BridgedCamera, ProgramKilledBetweenTwoBytes_LeavesThePortToTheNextOne) {
  Start("COM9", KrDeviceSerial::Serial0);
  {
    SocatProcess client = MakeClient("COM9");
    client.Send("*ID");
    ASSERT_TRUE(AwaitCounters(3, 0));
    client.Kill();
  }
  SocatProcess next = MakeClient("COM9");

  next.Send("N?\r");

  EXPECT_EQ(next.Await(kAnswer.size()), kAnswer);
  EXPECT_EQ(mBridge.GetState(), KrSerialBridgeState::Running);
}

TEST_F(BridgedCamera, ProgramBehindALinkedPseudoTerminalKilledBetweenTwoBytes_LeavesThePortToTheNextOne) {
  auto client = std::make_optional<SocatLine>(GetLink("com3"));
  Start("COM3", KrDeviceSerial::Serial0);
  client->Send("*ID");
  ASSERT_TRUE(AwaitCounters(3, 0));

  client->Kill();
  ASSERT_TRUE(AwaitState(KrSerialBridgeState::WaitingForPort));
  client.reset();
  client.emplace(GetLink("com3"));
  ASSERT_TRUE(AwaitState(KrSerialBridgeState::Running));
  client->Send("N?\r");

  EXPECT_EQ(client->Await(kAnswer.size()), kAnswer);
}
