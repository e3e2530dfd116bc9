// The end of a refresh that reads or polls a device with many registers, which keeps silent.

#include "logic/browser/browserrefresh.h"

#include "await.h"
#include "describedcamera.h"
#include "krbase/krlogger.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <mutex>

namespace krgui {

namespace {

constexpr int kRegisters = 50;
const std::chrono::milliseconds kPatience = krtest::GetGenerousLimit();

std::string MakePolledNodes() {
  std::string nodes;
  for (int i = 0; i < kRegisters; ++i) {
    nodes += "<IntReg Name=\"P" + std::to_string(i) + "\"><Address>" + std::to_string(i * 8) +
             "</Address><Length>8</Length><AccessMode>RO</AccessMode><pPort>Device</pPort><PollingTime>1</PollingTime>"
             "<Endianess>LittleEndian</Endianess></IntReg>\n";
  }
  return nodes;
}

/// A device that answers nothing: the time of an access is over when it is told that nobody waits for it any more.
class SilentPort final : public IKrRegisterPort {
public:
  KrResult Read(std::uint64_t, void*, std::size_t, std::uint32_t, const std::stop_token& aCancel) override {
    std::unique_lock lock(mMutex);
    ++mReadings;
    mChanged.notify_all();
    (void)mChanged.wait_for(lock, aCancel, kPatience, [] { return false; }); // What the time-out is for.
    mHasTimedOut |= !aCancel.stop_requested();
    return {KrResult::Code::TimeLimitExceeded, "The device did not answer in time."};
  }
  KrResult Write(std::uint64_t, const void*, std::size_t, std::uint32_t, const std::stop_token&) override { return {}; }

  /// One more than there have been before.
  void AwaitReading(int aBefore = 0) {
    std::unique_lock lock(mMutex);
    EXPECT_TRUE(mChanged.wait_for(lock, kPatience, [&] { return mReadings > aBefore; }));
  }
  int CountReadings() {
    const std::lock_guard lock(mMutex);
    return mReadings;
  }
  bool HasTimedOut() {
    const std::lock_guard lock(mMutex);
    return mHasTimedOut;
  }

private:
  std::mutex mMutex; // Guards the members from here on.
  std::condition_variable_any mChanged;
  int mReadings = 0;
  bool mHasTimedOut = false;
};

class PollingStop : public testing::Test {
protected:
  PollingStop() {
    KrGenDescription description;
    EXPECT_TRUE(KrGenDescription::ReadFromMemory(MakeDescription(MakePolledNodes()), "test", description).IsOK());
    EXPECT_TRUE(KrGenParameterArray::Open(description, mPort, {}, mArray).IsOK());
  }

  SilentPort mPort;
  std::unique_ptr<KrGenParameterArray> mArray;
  const RowNotifier mNotifier{std::make_shared<MessageQueue>()};
  BrowserTree mTree{mNotifier};
  BrowserRefresh mRefresh{mNotifier, {.automaticMs = 1, .pollingMs = 1}};
};

} // namespace

TEST_F(PollingStop, Stop_WhileASilentDeviceIsPolled_EndsTheOneReadingAndSaysNothingOfIt) {
  const KrLogCapture capture;
  mRefresh.Start(KrGenRefresh::Polling, *mArray, mTree);
  mPort.AwaitReading();

  mRefresh.Stop();

  EXPECT_EQ(mPort.CountReadings(), 1);
  const std::vector<KrLogRecord> records = capture.GetRecords();
  EXPECT_TRUE(std::none_of(records.begin(), records.end(),
                           [](const KrLogRecord& record) { return record.level == KrLogLevel::Warning; }));
}

TEST_F(PollingStop, Stop_WhileTheFirstValuesAreReadInAnyMode_WaitsForNoTimeOut) {
  for (int i = 0; i < kRegisters; ++i) {
    const KrString name("P" + std::to_string(i));
    mTree.AppendFeature(kNoItem, name, *mArray->Get(name));
  }
  for (const KrGenRefresh mode : {KrGenRefresh::Automatic, KrGenRefresh::Polling}) {
    const int before = mPort.CountReadings();
    mRefresh.Start(mode, *mArray, mTree);
    mPort.AwaitReading(before);

    mRefresh.Stop();

    EXPECT_FALSE(mPort.HasTimedOut()) << static_cast<int>(mode);
  }
}

} // namespace krgui
