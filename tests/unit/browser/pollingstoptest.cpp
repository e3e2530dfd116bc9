// The end of a refresh that polls a device with many registers, which keeps silent.

#include "logic/browser/browserrefresh.h"

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
constexpr std::chrono::seconds kPatience{60};

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
    return {KrResult::Code::TimeLimitExceeded, "The device did not answer in time."};
  }
  KrResult Write(std::uint64_t, const void*, std::size_t, std::uint32_t, const std::stop_token&) override { return {}; }

  void AwaitReading() {
    std::unique_lock lock(mMutex);
    EXPECT_TRUE(mChanged.wait_for(lock, kPatience, [this] { return mReadings > 0; }));
  }
  int CountReadings() {
    const std::lock_guard lock(mMutex);
    return mReadings;
  }

private:
  std::mutex mMutex; // Guards the count.
  std::condition_variable_any mChanged;
  int mReadings = 0;
};

} // namespace

TEST(PollingStop, Stop_WhileASilentDeviceIsPolled_EndsTheOneReadingAndSaysNothingOfIt) {
  SilentPort port;
  KrGenDescription description;
  std::unique_ptr<KrGenParameterArray> array;
  ASSERT_TRUE(KrGenDescription::ReadFromMemory(MakeDescription(MakePolledNodes()), "test", description).IsOK());
  ASSERT_TRUE(KrGenParameterArray::Open(description, port, {}, array).IsOK());
  const RowNotifier notifier(std::make_shared<MessageQueue>());
  const BrowserTree tree(notifier);
  BrowserRefresh refresh(notifier, {.automaticMs = 1, .pollingMs = 1});
  const KrLogCapture capture;
  refresh.Start(KrGenRefresh::Polling, *array, tree);
  port.AwaitReading();

  refresh.Stop();

  EXPECT_EQ(port.CountReadings(), 1);
  const std::vector<KrLogRecord> records = capture.GetRecords();
  EXPECT_TRUE(std::none_of(records.begin(), records.end(),
                           [](const KrLogRecord& record) { return record.level == KrLogLevel::Warning; }));
}

} // namespace krgui
