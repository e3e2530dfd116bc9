#include "changingcamera.h"
#include "krgenicam/krgenaccessstop.h"
#include "threadstate.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <stop_token>
#include <thread>

namespace {

// A port whose reads of one register wait until they are cancelled, while it is told to.
class WaitingPort final : public IKrRegisterPort {
public:
  static constexpr std::uint64_t kSlowAddress = 0x100;

  KrResult Read(std::uint64_t aAddress, void* aData, std::size_t aLength, std::uint32_t aTimeoutMs,
                const std::stop_token& aCancel) override {
    {
      std::unique_lock lock(mMutex);
      if (aAddress == kSlowAddress && mIsSlow) {
        mIsWaiting = true;
        mChanged.notify_all();
        mChanged.wait(lock, aCancel, [] { return false; });
        mChanged.wait(lock, [this] { return mMayLeave; });
        mIsWaiting = false;
        return {KrResult::Code::Aborted, "The access was cancelled."};
      }
    }
    return mMemory.Read(aAddress, aData, aLength, aTimeoutMs, aCancel);
  }
  KrResult Write(std::uint64_t aAddress, const void* aData, std::size_t aLength, std::uint32_t aTimeoutMs,
                 const std::stop_token& aCancel) override {
    return mMemory.Write(aAddress, aData, aLength, aTimeoutMs, aCancel);
  }

  void SetSlow(bool aIsSlow) {
    const std::lock_guard lock(mMutex);
    mIsSlow = aIsSlow;
  }
  void AwaitAccess() {
    std::unique_lock lock(mMutex);
    EXPECT_TRUE(mChanged.wait_for(lock, kPatience, [this] { return mIsWaiting; }));
  }

  /// Whether an access that was cancelled ends.
  void SetMayLeave(bool aMayLeave) {
    const std::lock_guard lock(mMutex);
    mMayLeave = aMayLeave;
    mChanged.notify_all();
  }
  bool IsWaiting() {
    const std::lock_guard lock(mMutex);
    return mIsWaiting;
  }

private:
  KrGenMemoryPort mMemory;
  std::mutex mMutex; // Guards the members from here on.
  std::condition_variable_any mChanged;
  bool mIsSlow = true;
  bool mIsWaiting = false;
  bool mMayLeave = true;
};

class Cancelling : public testing::Test {
protected:
  Cancelling() {
    KrGenDescription description;
    EXPECT_TRUE(KrGenDescription::ReadFromMemory(
                    MakeDescription(MakeRegister("Slow", 0x100, "<PollingTime>1000</PollingTime>") +
                                    MakeRegister("Quick", 0x200)),
                    "test", description)
                    .IsOK());
    EXPECT_TRUE(
        KrGenParameterArray::Open(description, mPort, {.getTimeMs = [this] { return mNowMs.load(); }}, mArray).IsOK());
  }
  // Has the notification thread look at the slow register for a sink that knows its value, and waits for the reading.
  void LookFor(RecordingSink& aSink) {
    mPort.SetSlow(false);
    EXPECT_TRUE(ReadSlow().IsOK());
    EXPECT_TRUE(mArray->GetInteger("Slow")->RegisterEventSink(&aSink).IsOK());
    mPort.SetSlow(true);
    EXPECT_TRUE(mArray->Invalidate("Slow").IsOK());
    mPort.AwaitAccess();
  }
  KrResult ReadSlow() {
    std::int64_t value = 0;
    return mArray->GetInteger("Slow")->GetValue(value);
  }
  // What a thread with a stop of its own got that read the slow register when aEnd came.
  KrResult ReadUnder(const std::stop_source& aStop, const std::function<void()>& aEnd) {
    KrResult result;
    {
      std::jthread reader([&] {
        const KrGenAccessStop end(aStop.get_token());
        result = ReadSlow();
      });
      mPort.AwaitAccess();
      aEnd();
    }
    return result;
  }

  std::atomic<std::uint64_t> mNowMs = 50000;
  WaitingPort mPort;
  std::unique_ptr<KrGenParameterArray> mArray;
};

} // namespace

TEST_F(Cancelling, Cancel_DuringAnAccess_EndsItWithAbortedAndLeavesLaterOnes) {
  KrResult result;
  {
    std::jthread reader([&] { result = ReadSlow(); });
    mPort.AwaitAccess();
    mArray->Cancel();
  }

  mPort.SetSlow(false);

  EXPECT_TRUE(result == KrResult::Code::Aborted);
  EXPECT_TRUE(ReadSlow().IsOK());
  EXPECT_TRUE(mArray->GetInteger("Quick")->SetValue(1).IsOK());
}

TEST_F(Cancelling, StopOfAThread_DuringItsAccess_EndsItAndLeavesLaterOnes) {
  std::stop_source stop;

  const KrResult result = ReadUnder(stop, [&] { stop.request_stop(); });
  mPort.SetSlow(false);

  EXPECT_TRUE(result == KrResult::Code::Aborted);
  EXPECT_TRUE(ReadSlow().IsOK());
}

TEST_F(Cancelling, StopOfAThread_DuringAnotherThreadsAccess_EndsItsOwnAlone) {
  KrResult result;
  KrResult quickResult;
  std::jthread reader([&] { result = ReadSlow(); });
  mPort.AwaitAccess();
  {
    std::stop_source stop;
    const KrGenAccessStop end(stop.get_token());
    stop.request_stop();
    EXPECT_TRUE(mPort.IsWaiting());
    mArray->Cancel();
    std::int64_t value = 0;
    quickResult = mArray->GetInteger("Quick")->GetValue(value);
  }
  reader.join();

  EXPECT_TRUE(result == KrResult::Code::Aborted);
  EXPECT_TRUE(quickResult == KrResult::Code::Aborted);
  EXPECT_TRUE(mArray->GetInteger("Quick")->SetValue(1).IsOK());
}

TEST_F(Cancelling, CancelOfTheArray_EndsTheAccessOfAThreadWithAStopOfItsOwn) {
  std::stop_source stop;

  const KrResult result = ReadUnder(stop, [&] { mArray->Cancel(); });

  EXPECT_TRUE(result == KrResult::Code::Aborted);
}

TEST_F(Cancelling, StopOfAPoll_DuringAnAccess_EndsItAndLeavesLaterOnes) {
  mNowMs += 1000;
  KrResult result;
  {
    std::stop_source stop;
    std::jthread poller([&] { result = mArray->Poll(stop.get_token()); });
    mPort.AwaitAccess();
    stop.request_stop();
  }

  mPort.SetSlow(false);

  EXPECT_TRUE(result == KrResult::Code::Aborted);
  EXPECT_TRUE(ReadSlow().IsOK());
}

TEST_F(Cancelling, Cancel_OfAPollThatCouldBeStopped_EndsItsAccess) {
  mNowMs += 1000;
  KrResult result;
  {
    const std::stop_source stop;
    std::jthread poller([&] { result = mArray->Poll(stop.get_token()); });
    mPort.AwaitAccess();
    mArray->Cancel();
  }

  EXPECT_TRUE(result == KrResult::Code::Aborted);
}

TEST_F(Cancelling, Cancel_WithoutAnAccess_LeavesLaterOnes) {
  mArray->Cancel();
  mPort.SetSlow(false);

  EXPECT_TRUE(ReadSlow().IsOK());
}

TEST_F(Cancelling, Close_DuringAnAccess_EndsItAndAllLaterOnes) {
  KrResult result;
  {
    std::jthread reader([&] { result = ReadSlow(); });
    mPort.AwaitAccess();
    mArray->Close();
  }

  EXPECT_FALSE(result.IsOK());
  EXPECT_TRUE(ReadSlow() == KrResult::Code::ConnectionLost);
}

TEST_F(Cancelling, Cancel_OfALookForASink_TellsTheSinkNothingAndHasItLookAgain) {
  RecordingSink sink;
  LookFor(sink);
  mPort.SetSlow(false);

  mArray->Cancel();
  ASSERT_TRUE(mArray->GetInteger("Slow")->SetValue(4).IsOK());
  sink.WaitForCalls(1);

  EXPECT_EQ(sink.TakeNames().size(), 1u);
  EXPECT_TRUE(mArray->GetInteger("Slow")->UnregisterEventSink(&sink).IsOK());
}

TEST_F(Cancelling, Destruction_DuringALookForASink_EndsIt) {
  RecordingSink sink;
  LookFor(sink);

  mArray.reset();

  EXPECT_TRUE(sink.TakeNames().empty());
}

TEST_F(Cancelling, UnregisterEventSink_DuringAnAccess_DoesNotWaitForIt) {
  RecordingSink sink;
  LookFor(sink);

  EXPECT_TRUE(mArray->GetInteger("Slow")->UnregisterEventSink(&sink).IsOK());
}

TEST_F(Cancelling, Destruction_DuringAnAccess_WaitsForItsEnd) {
  KrResult result;
  std::jthread reader([&] { result = ReadSlow(); });
  mPort.AwaitAccess();
  mPort.SetMayLeave(false);

  krtest::CallBeside destruction([this] { mArray.reset(); });

  EXPECT_TRUE(destruction.Waits());
  mPort.SetMayLeave(true);
  destruction.Join();
  EXPECT_FALSE(mPort.IsWaiting());
  reader.join();
  EXPECT_FALSE(result.IsOK());
}
