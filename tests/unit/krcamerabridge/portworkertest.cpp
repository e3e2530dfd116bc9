#include "line/portworker.h"

#include "await.h"
#include "standingclock.h"

#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <functional>
#include <future>
#include <map>
#include <stdexcept>
#include <string>

namespace krcamerabridge {
namespace {

using namespace std::chrono_literals;

constexpr std::uint32_t kGenerousMs = 60000;

// A camera whose answers are ordered; unless they are, it gives the low byte of each address and takes all.
class OrderedDevice final : public ILineDevice {
public:
  using Answer = std::function<KrResult(const std::stop_token&)>;

  KrResult Read(std::uint64_t aAddress, std::span<std::uint8_t> aData, const std::stop_token& aStop) override {
    for (std::size_t i = 0; i < aData.size(); ++i)
      aData[i] = static_cast<std::uint8_t>(aAddress + i);
    return Do(aStop);
  }
  KrResult Write(std::uint64_t aAddress, std::span<const std::uint8_t> aData, const std::stop_token& aStop) override {
    KrResult result = Do(aStop);
    const std::lock_guard lock(mMutex);
    written[aAddress].assign(aData.begin(), aData.end());
    return result;
  }
  KrResult Probe(const std::stop_token& aStop) override {
    std::unique_lock lock(mMutex);
    ++probes;
    mChanged.notify_all();
    const KrResult answer = probeAnswer;
    if (waitsInProbe)
      mChanged.wait(lock, aStop, [this] { return !waitsInProbe; });
    return answer;
  }

  void Order(Answer aAnswer) {
    const std::lock_guard lock(mMutex);
    mAnswer = std::move(aAnswer);
  }
  // Whoever asks waits until who asked leaves.
  void OrderSilence() {
    Order([this](const std::stop_token& aStop) {
      std::unique_lock lock(mMutex);
      mChanged.wait(lock, aStop, [] { return false; });
      return KrResult(KrResult::Code::Aborted, "Who asked has left.");
    });
  }
  void AnswerProbesWith(const KrResult& aAnswer) {
    const std::lock_guard lock(mMutex);
    probeAnswer = aAnswer;
  }
  bool AwaitProbes(int aCount) {
    std::unique_lock lock(mMutex);
    return mChanged.wait_for(lock, krtest::GetGenerousLimit(), [&] { return probes >= aCount; });
  }
  bool AwaitCalls(int aCount) {
    std::unique_lock lock(mMutex);
    return mChanged.wait_for(lock, krtest::GetGenerousLimit(), [&] { return calls >= aCount; });
  }

  std::map<std::uint64_t, std::vector<std::uint8_t>> written;
  std::atomic<int> probes{0};
  std::atomic<int> calls{0};
  std::atomic<int> callsAtOnce{0};
  std::atomic<int> mostCallsAtOnce{0};
  KrResult probeAnswer;
  bool waitsInProbe = false;

private:
  KrResult Do(const std::stop_token& aStop) {
    const int running = ++callsAtOnce;
    if (running > mostCallsAtOnce)
      mostCallsAtOnce = running;
    Answer answer;
    {
      const std::lock_guard lock(mMutex);
      ++calls;
      answer = mAnswer;
    }
    mChanged.notify_all();
    struct Leave {
      std::atomic<int>& count;
      ~Leave() { --count; }
    } leave{callsAtOnce};
    return answer ? answer(aStop) : KrResult();
  }

  std::mutex mMutex; // Guards what a test changes.
  std::condition_variable_any mChanged;
  Answer mAnswer;
};

KrResult Read(IKrRegisterPort& aPort, std::uint32_t aTimeoutMs = kGenerousMs, const std::stop_token& aCancel = {}) {
  std::array<std::uint8_t, 4> bytes;
  return aPort.Read(0x20, bytes.data(), bytes.size(), aTimeoutMs, aCancel);
}

// Reads until the camera is asked again after its silence.
KrResult ReadUntilAnswered(IKrRegisterPort& aPort) {
  KrResult result;
  EXPECT_TRUE(krtest::Await([&] {
    result = Read(aPort);
    return result != KrResult::Code::TimeLimitExceeded;
  }));
  return result;
}

// An access has begun that waits for a silent camera until it is stopped.
class BusyPortWorker : public testing::Test {
protected:
  void SetUp() override {
    mDevice.OrderSilence();
    mFirst = std::async(std::launch::async, [this] { return Read(mPort, kGenerousMs, mStop.get_token()); });
    ASSERT_TRUE(mDevice.AwaitCalls(1));
  }

  OrderedDevice mDevice;
  const std::shared_ptr<StandingClock> mClock = std::make_shared<StandingClock>();
  PortWorker mPort{mDevice, {}, mClock};
  std::stop_source mStop;
  std::future<KrResult> mFirst;
};

TEST(PortWorker, Access_ReachesTheDevice) {
  OrderedDevice device;
  PortWorker port(device);
  const std::array<std::uint8_t, 2> sent{7, 8};
  std::array<std::uint8_t, 3> read{};

  ASSERT_TRUE(port.Read(0xFE, read.data(), read.size(), kGenerousMs).IsOK());
  ASSERT_TRUE(port.Write(0x40, sent.data(), sent.size(), kGenerousMs).IsOK());

  EXPECT_EQ(read, (std::array<std::uint8_t, 3>{0xFE, 0xFF, 0x00}));
  EXPECT_EQ(device.written[0x40], (std::vector<std::uint8_t>{7, 8}));
}

TEST(PortWorker, Access_OfWhatCanNeverBe_IsInvalidInput) {
  OrderedDevice device;
  PortWorker port(device);
  std::vector<std::uint8_t> bytes((16u << 20) + 1);

  EXPECT_EQ(port.Read(0, nullptr, 4, 1), KrResult::Code::InvalidInput);
  EXPECT_EQ(port.Read(0, bytes.data(), 0, 1), KrResult::Code::InvalidInput);
  EXPECT_EQ(port.Read(0, bytes.data(), 4, 0), KrResult::Code::InvalidInput);
  EXPECT_EQ(port.Read(0, bytes.data(), bytes.size(), 1), KrResult::Code::InvalidInput);
  EXPECT_EQ(port.Write(UINT64_MAX - 2, bytes.data(), 4, 1), KrResult::Code::InvalidInput);
  EXPECT_EQ(device.calls, 0);
}

TEST(PortWorker, AccessesOfManyThreads_AreDoneOneAfterTheOther) {
  OrderedDevice device;
  PortWorker port(device);
  std::vector<std::future<KrResult>> reads;
  for (int i = 0; i < 16; ++i)
    reads.push_back(std::async(std::launch::async, [&] { return Read(port); }));

  for (auto& read : reads)
    EXPECT_TRUE(read.get().IsOK());

  EXPECT_EQ(device.calls, 16);
  EXPECT_EQ(device.mostCallsAtOnce, 1);
}

TEST(PortWorker, AccessThatTakesTooLong_MakesTheCameraSilentUntilItAnswersAProbe) {
  OrderedDevice device;
  device.AnswerProbesWith({KrResult::Code::TimeLimitExceeded, "No answer."});
  device.OrderSilence();
  PortWorker port(device, {0, 1});

  // Its first half is long enough for the worker's thread to begin in.
  EXPECT_EQ(Read(port, 4000), KrResult::Code::TimeLimitExceeded);
  ASSERT_TRUE(device.AwaitProbes(2));
  const KrResult atOnce = Read(port);
  EXPECT_EQ(atOnce, KrResult::Code::TimeLimitExceeded);
  EXPECT_NE(atOnce.GetDescription().ToUtf8().find("a moment ago"), std::string::npos) << "it did not wait itself";
  EXPECT_NE(atOnce.GetDescription().ToUtf8().find("Check its cable and its power"), std::string::npos);
  EXPECT_EQ(device.calls, 1);

  device.Order({});
  device.AnswerProbesWith({});
  EXPECT_TRUE(ReadUntilAnswered(port).IsOK());
}

TEST(PortWorker, DeviceThatGivesUp_IsSilentToo) {
  OrderedDevice device;
  device.AnswerProbesWith({KrResult::Code::TimeLimitExceeded, "No answer."});
  device.Order([](const std::stop_token&) { return KrResult(KrResult::Code::TimeLimitExceeded, "No answer."); });
  PortWorker port(device, {0, 1});

  EXPECT_EQ(Read(port), KrResult::Code::TimeLimitExceeded);
  EXPECT_EQ(Read(port), KrResult::Code::TimeLimitExceeded);

  EXPECT_TRUE(device.AwaitProbes(1));
  EXPECT_EQ(device.calls, 1);
}

TEST_F(BusyPortWorker, AccessThatNeverBegan_FailsAlone) {
  auto second = std::async(std::launch::async, [&] { return Read(mPort, 20); });
  ASSERT_TRUE(krtest::Await([this] { return mClock->CountWaiting() == 2; }));

  mClock->Advance(20ms);

  EXPECT_EQ(second.get(), KrResult::Code::TimeLimitExceeded);
  mDevice.Order({});
  mStop.request_stop();

  EXPECT_EQ(mFirst.get(), KrResult::Code::Aborted);
  EXPECT_TRUE(Read(mPort).IsOK());
  EXPECT_EQ(mDevice.probes, 0);
}

TEST_F(BusyPortWorker, AccessThatBeganLate_FailsAlone) {
  auto second = std::async(std::launch::async, [&] { return Read(mPort, 2000); });
  ASSERT_TRUE(krtest::Await([this] { return mClock->CountWaiting() == 2; }));
  mClock->Advance(1600ms); // The first has the camera for most of the second's time.

  mStop.request_stop();
  ASSERT_TRUE(mDevice.AwaitCalls(2));
  mClock->Advance(400ms);

  EXPECT_EQ(mFirst.get(), KrResult::Code::Aborted);
  EXPECT_EQ(second.get(), KrResult::Code::TimeLimitExceeded);
  mDevice.Order({});
  EXPECT_TRUE(Read(mPort).IsOK());
  EXPECT_EQ(mDevice.probes, 0);
}

TEST_F(BusyPortWorker, AccessThatBeganInTime_MakesTheCameraSilent) {
  auto second = std::async(std::launch::async, [&] { return Read(mPort, 2000); });
  ASSERT_TRUE(krtest::Await([this] { return mClock->CountWaiting() == 2; }));
  mClock->Advance(1000ms);

  mStop.request_stop();
  ASSERT_TRUE(mDevice.AwaitCalls(2));
  mClock->Advance(1000ms);

  EXPECT_EQ(second.get(), KrResult::Code::TimeLimitExceeded);
  EXPECT_TRUE(mDevice.AwaitProbes(1));
}

TEST_F(BusyPortWorker, Cancel_EndsTheAccessAtOnceAndStopsTheCallOfTheDevice) {
  mDevice.Order({});

  mStop.request_stop();

  EXPECT_EQ(mFirst.get(), KrResult::Code::Aborted);
  EXPECT_TRUE(Read(mPort).IsOK());
}

TEST_F(BusyPortWorker, End_EndsThoseWhoWaitAndAllLaterOnes) {
  auto second = std::async(std::launch::async, [&] { return Read(mPort); });

  mPort.End();

  EXPECT_EQ(mFirst.get(), KrResult::Code::Aborted);
  EXPECT_EQ(second.get(), KrResult::Code::Aborted);
  EXPECT_EQ(Read(mPort), KrResult::Code::Aborted);
  EXPECT_EQ(mDevice.calls, 1);
}

TEST(PortWorker, Loss_IsForEver) {
  OrderedDevice device;
  device.Order([](const std::stop_token&) { return KrResult(KrResult::Code::ConnectionLost, "Gone."); });
  PortWorker port(device, {1, 1});

  EXPECT_EQ(Read(port), KrResult::Code::ConnectionLost);
  device.Order({});

  EXPECT_EQ(Read(port), KrResult::Code::ConnectionLost);
  EXPECT_EQ(device.calls, 1);
}

TEST(PortWorker, Exception_IsTheFailureOfTheAccess) {
  OrderedDevice device;
  device.Order([](const std::stop_token&) -> KrResult { throw std::runtime_error("the cable was eaten"); });
  PortWorker port(device);

  const KrResult result = Read(port);

  EXPECT_EQ(result, KrResult::Code::SystemError);
  EXPECT_NE(result.GetDescription().ToUtf8().find("the cable was eaten"), std::string::npos);
}

TEST(PortWorker, KeepAlive_ProbesACameraThatNobodyAsks) {
  OrderedDevice device;
  const PortWorker port(device, {1, 1});

  EXPECT_TRUE(device.AwaitProbes(3));
}

TEST(PortWorker, WithoutKeepAlive_NothingIsProbed) {
  OrderedDevice device;
  {
    PortWorker port(device);
    ASSERT_TRUE(Read(port).IsOK());
  }

  EXPECT_EQ(device.probes, 0);
}

TEST(PortWorker, Destruction_EndsAProbeThatWaits) {
  OrderedDevice device;
  device.waitsInProbe = true;
  {
    const PortWorker port(device, {1, 1});
    ASSERT_TRUE(device.AwaitProbes(1));
  }

  EXPECT_EQ(device.probes, 1);
}

} // namespace
} // namespace krcamerabridge
