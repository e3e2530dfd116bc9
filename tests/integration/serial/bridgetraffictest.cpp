// Programs of others at a camera's serial port, by way of a bridge.

#include "bridgelab.h"
#include "krserial/krdeviceserialport.h"
#include "numberedlines.h"
#include "rawend.h"

#include <thread>

using krtest::SocatLine;
using krtest::SocatProcess;

namespace {

constexpr std::size_t kMegabyte = 1'000'000;
const std::string kQuestion = "*IDN?\r";
const std::string kAnswer = "Simulated Instrument,S1-Serial0\r\n";

/// Sends a megabyte each way at once and looks at what comes out.
template <typename Client>
void ExchangeMegabytes(const RawLine& aDevice, Client& aClient) {
  const std::string toDevice = krtest::MakeNumberedLines(kMegabyte);
  const std::string fromDevice = krtest::MakeNumberedLines(kMegabyte, 1'000'000);

  aClient.Send(toDevice);
  const std::jthread writer([&] { aDevice.Write(fromDevice); });
  std::string received;
  {
    const std::jthread reader([&] { received = aDevice.Read(kMegabyte); });
    EXPECT_TRUE(aClient.Await(kMegabyte) == fromDevice);
  }

  EXPECT_TRUE(received == toDevice);
}

} // namespace

TEST_F(BridgedCamera, ProgramBehindALinkedPseudoTerminal_TalksToTheInstrument) {
  SocatLine client(GetLink("com3"));
  Start("COM3", KrDeviceSerial::Serial0);

  client.Send(kQuestion);

  EXPECT_EQ(client.Await(kAnswer.size()), kAnswer);
  EXPECT_TRUE(AwaitCounters(kQuestion.size(), kAnswer.size()));
  EXPECT_EQ(mBridge.GetState(), KrSerialBridgeState::Running);
  EXPECT_EQ(mBridge.GetStateText(), KrString());
}

TEST_F(BridgedCamera, ProgramThatOpensAPortThatWasMade_TalksToTheInstrument) {
  Start("COM9", KrDeviceSerial::Serial0);
  SocatProcess client = MakeClient("COM9");

  client.Send(kQuestion);

  EXPECT_EQ(client.Await(kAnswer.size()), kAnswer);
  EXPECT_TRUE(AwaitCounters(kQuestion.size(), kAnswer.size()));
}

TEST_F(BridgedCamera, MegabytesEachWayAtOnceThroughALinkedPseudoTerminal_AreWholeAndCounted) {
  const RawLine device(GetLine());
  SocatLine client(GetLink("com3"));
  Start("COM3", KrDeviceSerial::Serial1);

  ExchangeMegabytes(device, client);

  EXPECT_TRUE(AwaitCounters(kMegabyte, kMegabyte));
}

TEST_F(BridgedCamera, MegabytesEachWayAtOnceThroughAPortThatWasMade_AreWholeAndCounted) {
  const RawLine device(GetLine());
  Start("COM9", KrDeviceSerial::Serial1);
  SocatProcess client = MakeClient("COM9");
  // What the device sends before the program has opened the port is dropped from 64 KiB on.
  client.Send(kQuestion);
  ASSERT_EQ(device.Read(kQuestion.size()), kQuestion);

  ExchangeMegabytes(device, client);

  EXPECT_TRUE(AwaitCounters(kQuestion.size() + kMegabyte, kMegabyte));
}

TEST_F(BridgedCamera, CountersReset_CountFromThereOn) {
  Start("COM9", KrDeviceSerial::Bulk0);
  SocatProcess client = MakeClient("COM9");
  client.Send("first");
  ASSERT_TRUE(AwaitCounters(5, 5));

  mBridge.ResetStatistics();
  client.Send("second");

  EXPECT_EQ(client.Await(11), "firstsecond");
  EXPECT_TRUE(AwaitCounters(6, 6));
}

TEST_F(BridgedCamera, ProgramsOneAfterTheOther_FindThePortAsTheyExpect) {
  Start("COM9", KrDeviceSerial::Serial0);
  for (int round = 0; round < 3; ++round) {
    SocatProcess client = MakeClient("COM9");

    client.Send(kQuestion);

    EXPECT_EQ(client.Await(kAnswer.size()), kAnswer) << round;
  }
}

TEST_F(BridgedCamera, PortThatTheProgramHasOpenAlready_IsBusyForTheBridgeAndTheOtherWayRound) {
  KrDeviceSerialPort port;
  ASSERT_TRUE(port.Open(&*mAdapter, KrDeviceSerial::Serial0).IsOK());
  mBridge.SetCreatingPort(true);

  const KrResult refused = mBridge.Start("COM9", {}, &*mAdapter, KrDeviceSerial::Serial0);

  EXPECT_EQ(refused, KrResult::Code::Busy);
  EXPECT_FALSE(refused.GetDescription().IsEmpty());
  ASSERT_TRUE(port.Close().IsOK());
  Start("COM9", KrDeviceSerial::Serial0);
  EXPECT_EQ(port.Open(&*mAdapter, KrDeviceSerial::Serial0), KrResult::Code::Busy);
}

TEST_F(BridgedCamera, BridgeStopped_LeavesThePortsFree) {
  Start("COM9", KrDeviceSerial::Serial0);
  ASSERT_TRUE(std::filesystem::is_symlink(GetLink("com9")));

  mBridge.Stop();

  EXPECT_FALSE(std::filesystem::is_symlink(GetLink("com9")));
  KrDeviceSerialPort port;
  EXPECT_TRUE(port.Open(&*mAdapter, KrDeviceSerial::Serial0).IsOK());
}
