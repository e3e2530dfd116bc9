#include "aravis/iothread.h"

#include "await.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <future>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

using krtransport::IoThread;

const std::uint32_t kGenerousTimeoutMs = krtest::GetGenerousMs();

TEST(IoThread, Run_Job_ReturnsItsResult) {
  IoThread thread;

  const KrResult result =
      thread.Run([](const auto&) { return KrResult(KrResult::Code::BadData, "text"); }, kGenerousTimeoutMs);

  EXPECT_EQ(result, KrResult::Code::BadData);
  EXPECT_EQ(result.GetDescription(), KrString("text"));
}

TEST(IoThread, Run_SeveralCallers_RunsOneJobAfterTheOther) {
  IoThread thread;
  int running = 0;
  int mostRunning = 0;
  std::vector<std::future<void>> callers;

  for (int i = 0; i < 8; ++i)
    callers.push_back(std::async(std::launch::async, [&] {
      EXPECT_TRUE(thread
                      .Run(
                          [&](const auto&) {
                            mostRunning = std::max(mostRunning, ++running);
                            --running;
                            return KrResult();
                          },
                          kGenerousTimeoutMs)
                      .IsOK());
    }));
  for (auto& caller : callers)
    caller.get();

  EXPECT_EQ(mostRunning, 1);
}

/// Keeps a thread busy from construction to Release.
class BlockingJob {
public:
  explicit BlockingJob(IoThread& aThread) {
    mCaller = std::async(std::launch::async, [this, &aThread] {
      return aThread.Run(
          [this](const std::atomic<bool>& aIsAbandoned) {
            mBegun.set_value();
            mReleased.get_future().wait();
            mWasAbandoned.set_value(aIsAbandoned);
            return KrResult();
          },
          kGenerousTimeoutMs);
    });
    mBegun.get_future().wait();
  }
  void Release() { mReleased.set_value(); }
  KrResult GetResult() { return mCaller.get(); }
  bool WasAbandoned() { return mWasAbandoned.get_future().get(); }

private:
  std::promise<void> mBegun;
  std::promise<void> mReleased;
  std::promise<bool> mWasAbandoned;
  std::future<KrResult> mCaller;
};

TEST(IoThread, Run_ThreadBusyBeyondTheLimit_ReturnsInTimeAndSkipsTheJob) {
  bool isRun = false;
  IoThread thread;
  BlockingJob blocking(thread);

  const KrResult result = thread.Run(
      [&](const auto&) {
        isRun = true;
        return KrResult();
      },
      1);
  blocking.Release();

  EXPECT_EQ(result, KrResult::Code::TimeLimitExceeded);
  EXPECT_TRUE(blocking.GetResult().IsOK());
  EXPECT_TRUE(thread.RunToEnd([](const auto&) { return KrResult(); }).IsOK());
  EXPECT_FALSE(isRun);
  EXPECT_FALSE(blocking.WasAbandoned());
}

TEST(IoThread, Interrupt_WhileAJobIsAwaited_EndsThatWaitAndTellsTheJob) {
  IoThread thread;
  BlockingJob blocking(thread);

  thread.Interrupt({KrResult::Code::ConnectionLost, "gone"});

  EXPECT_EQ(blocking.GetResult(), KrResult::Code::ConnectionLost);
  blocking.Release();
  EXPECT_TRUE(blocking.WasAbandoned());
}

TEST(IoThread, Interrupt_Earlier_RefusesRunWithTheReasonButNotRunToEnd) {
  IoThread thread;

  thread.Interrupt({KrResult::Code::ConnectionLost, "gone"});

  EXPECT_EQ(thread.Run([](const auto&) { return KrResult(); }, kGenerousTimeoutMs), KrResult::Code::ConnectionLost);
  EXPECT_TRUE(thread.RunToEnd([](const auto&) { return KrResult(); }).IsOK());
}

TEST(IoThread, Run_Cancelled_ReturnsAtOnceWithAborted) {
  IoThread thread;
  BlockingJob blocking(thread);
  std::stop_source cancel;
  cancel.request_stop();

  const KrResult result = thread.Run([](const auto&) { return KrResult(); }, 3600000, cancel.get_token());
  blocking.Release();

  EXPECT_EQ(result, KrResult::Code::Aborted);
  EXPECT_TRUE(blocking.GetResult().IsOK());
}

TEST(IoThread, Run_CancelledBefore_BeginsNothing) {
  bool hasBegun = false;
  std::stop_source cancel;
  cancel.request_stop();
  {
    IoThread thread;

    EXPECT_EQ(thread.Run(
                  [&](const auto&) {
                    hasBegun = true;
                    return KrResult();
                  },
                  kGenerousTimeoutMs, cancel.get_token()),
              KrResult::Code::Aborted);
  }

  EXPECT_FALSE(hasBegun);
}

TEST(IoThread, RunRegardless_Interrupted_RunsWithinItsLimit) {
  IoThread thread;
  thread.Interrupt({KrResult::Code::ConnectionLost, "gone"});

  const KrResult result = thread.RunRegardless([](const auto&) { return KrResult(); }, kGenerousTimeoutMs);

  EXPECT_TRUE(result.IsOK());
}

TEST(IoThread, RunRegardless_ThreadBusyBeyondTheLimit_ReturnsInTime) {
  IoThread thread;
  BlockingJob blocking(thread);

  const KrResult result = thread.RunRegardless([](const auto&) { return KrResult(); }, 1);
  blocking.Release();

  EXPECT_EQ(result, KrResult::Code::TimeLimitExceeded);
  EXPECT_TRUE(blocking.GetResult().IsOK());
}

TEST(IoThread, Post_Job_RunsBeforeTheThreadEnds) {
  bool isRun = false;
  {
    IoThread thread;
    thread.Post([&](const auto&) {
      isRun = true;
      return KrResult();
    });
  }

  EXPECT_TRUE(isRun);
}

TEST(IoThread, Run_JobThrows_ReturnsSystemErrorAndGoesOn) {
  IoThread thread;

  const KrResult known =
      thread.Run([](const auto&) -> KrResult { throw std::runtime_error("broken"); }, kGenerousTimeoutMs);
  const KrResult unknown = thread.Run([](const auto&) -> KrResult { throw 1; }, kGenerousTimeoutMs);
  const KrResult next = thread.Run([](const auto&) { return KrResult(); }, kGenerousTimeoutMs);

  EXPECT_EQ(known, KrResult::Code::SystemError);
  EXPECT_NE(known.GetDescription().ToUtf8().find("broken"), std::string::npos);
  EXPECT_EQ(unknown, KrResult::Code::SystemError);
  EXPECT_TRUE(next.IsOK());
}

} // namespace
