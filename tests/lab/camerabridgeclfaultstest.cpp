// What goes wrong between a camera bridge and its camera by CL Protocol, and what is left of connections.

#include "camerabridgeclfixture.h"
#include "footprint.h"

#include <sys/prctl.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <future>
#include <string>

namespace {

constexpr std::uint32_t kPort = static_cast<std::uint32_t>(KrDeviceSerial::Bulk0);

class CameraBridgeCLFaultsTest : public CameraBridgeCLProtocolTest {
protected:
  KrSimulatedSerialCounts GetCounts() {
    KrSimulatedSerialCounts counts;
    EXPECT_TRUE(mLab.GetFaults()->GetSerialCounts(kPort, counts).IsOK());
    return counts;
  }

  BridgeLab mLab;
  KrCameraBridge mBridge{mLab.GetDevice(), KrDeviceSerial::Bulk0, nullptr};
};

using Order = KrResult (KrSimulatedFaults::*)(std::uint32_t, KrSerialDirection, std::uint32_t);
using Count = std::uint64_t KrSimulatedSerialCounts::*;

struct LineFault {
  const char* name;
  Order order;
  Count sent;
  Count received;
};

class DisturbedCLLineTest : public CameraBridgeCLFaultsTest, public testing::WithParamInterface<LineFault> {
protected:
  // Right, or clearly failed: a connection that is there has been said to be made, and the other way round.
  bool TryToConnect() {
    const KrResult result = Connect(mBridge);
    EXPECT_EQ(result.IsOK(), mBridge.IsConnected());
    EXPECT_TRUE(result.IsOK() || result == KrResult::Code::NotFound) << result.GetDescription().CStr();
    return result.IsOK();
  }
  // The width as soon as the camera can be asked for it.
  std::string AwaitWidth() {
    std::string width;
    EXPECT_TRUE(WaitUntil([&] {
      width = GetText(*mBridge.GetParameters(), "Width");
      return width != "TimeLimitExceeded";
    }));
    return width;
  }
};

} // namespace

TEST_P(DisturbedCLLineTest, OneByteInAThousand_LeavesEveryOperationRightOrClearlyFailed) {
  for (const KrSerialDirection direction : {KrSerialDirection::Received, KrSerialDirection::Sent})
    ASSERT_TRUE(((*mLab.GetFaults()).*GetParam().order)(kPort, direction, 1000).IsOK());

  ASSERT_TRUE(WaitUntil([&] { return TryToConnect(); }));
  int done = 0;
  std::string former = AwaitWidth();
  for (int i = 1; i <= 60; ++i) {
    const std::string width = std::to_string(64 + 4 * i);
    const KrResult result = SetText(*mBridge.GetParameters(), "Width", width.c_str());
    const std::string present = AwaitWidth();
    if (result.IsOK())
      ASSERT_EQ(present, width);
    else
      ASSERT_TRUE(result == KrResult::Code::TimeLimitExceeded && (present == width || present == former))
          << result.GetDescription().CStr() << ' ' << present;
    done += result.IsOK() ? 1 : 0;
    former = present;
  }

  EXPECT_GE(done, 30);
  const KrSimulatedSerialCounts counts = GetCounts();
  EXPECT_GE(counts.*GetParam().sent, 2u);
  EXPECT_GE(counts.*GetParam().received, 4u);
}

INSTANTIATE_TEST_SUITE_P(
    CameraBridge, DisturbedCLLineTest,
    testing::Values(LineFault{"Lost", &KrSimulatedFaults::LoseSerialBytes, &KrSimulatedSerialCounts::lostSent,
                              &KrSimulatedSerialCounts::lostReceived},
                    LineFault{"Repeated", &KrSimulatedFaults::RepeatSerialBytes, &KrSimulatedSerialCounts::repeatedSent,
                              &KrSimulatedSerialCounts::repeatedReceived},
                    LineFault{"Corrupted", &KrSimulatedFaults::CorruptSerialBytes,
                              &KrSimulatedSerialCounts::corruptedSent, &KrSimulatedSerialCounts::corruptedReceived}),
    [](const testing::TestParamInfo<LineFault>& aInfo) { return aInfo.param.name; });

TEST_F(CameraBridgeCLFaultsTest, Cancel_EndsADisconnectThatWaitsForItsDriver) {
  const KrLogCapture log;
  ASSERT_TRUE(IsFine(Connect(mBridge)));
  const std::vector<pid_t> keepers = ListChildren(getpid());
  ASSERT_EQ(keepers.size(), 1u);
  const std::vector<pid_t> drivers = ListChildren(keepers[0]);
  ASSERT_EQ(drivers.size(), 1u);
  ASSERT_EQ(kill(drivers[0], SIGSTOP), 0);

  std::future<void> disconnecting = std::async(std::launch::async, [&] { mBridge.Disconnect(); });
  while (disconnecting.wait_for(std::chrono::milliseconds(10)) != std::future_status::ready)
    mBridge.Cancel();

  const std::vector<KrLogRecord> records = log.GetRecords();
  EXPECT_TRUE(std::ranges::any_of(records, [](const KrLogRecord& aRecord) {
    return aRecord.text.ToUtf8().find("was ended, as nobody waits for it any more") != std::string::npos;
  }));
  EXPECT_FALSE(mBridge.IsConnected());
  EXPECT_TRUE(ListChildren(getpid()).empty());
  EXPECT_EQ(kill(drivers[0], 0), -1);
}

TEST_F(CameraBridgeCLFaultsTest, FiftyConnections_LeaveNoProcessThreadOrDescriptor) {
  // What they leave behind becomes a child of this process.
  ASSERT_EQ(prctl(PR_SET_CHILD_SUBREAPER, 1), 0);
  ASSERT_TRUE(IsFine(Connect(mBridge)));
  mBridge.Disconnect();
  const Footprint before = MeasureFootprint();

  for (int i = 0; i < 50; ++i) {
    ASSERT_TRUE(IsFine(mBridge.ConnectCLProtocol(mTemplate, mXMLID)));
    ASSERT_EQ(ListChildren(getpid()).size(), 1u);
    mBridge.Disconnect();
    ASSERT_EQ(ListChildren(getpid()).size(), 0u);
  }

  EXPECT_EQ(MeasureFootprint().descriptors, before.descriptors);
  // The kernel may list a thread for a moment after it was waited for.
  EXPECT_TRUE(WaitUntil([&] { return MeasureFootprint().threads == before.threads; }));
}
