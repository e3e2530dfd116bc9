#include "logic/finder/findlock.h"

#include "await.h"

#include <atomic>
#include <gtest/gtest.h>
#include <stop_token>
#include <thread>

using krgui::FindLock;

namespace {

void DoNothing() {}

// A discovery that goes on until it is cancelled or stopped, and starts anew at once, as the finder's thread does.
class Worker {
public:
  explicit Worker(FindLock& aLock) : mLock(aLock), mThread([this](const std::stop_token& aStop) { Work(aStop); }) {}

  void Cancel() { mIsCancelled = true; }
  int GetRoundCount() const { return mRoundCount; }
  int GetFailedTryCount() const { return mFailedTryCount; }
  bool IsFinding() const { return mIsFinding; }
  void WaitForRoundBeyond(int aCount) const {
    EXPECT_TRUE(krtest::Await([&] { return mRoundCount > aCount; }));
  }
  void WaitForFailedTryBeyond(int aCount) const {
    EXPECT_TRUE(krtest::Await([&] { return mFailedTryCount > aCount; }));
  }

private:
  void Work(const std::stop_token& aStop) {
    while (!aStop.stop_requested()) {
      if (!mLock.TryLock()) {
        ++mFailedTryCount;
        continue;
      }
      // A cancellation that came before a round began does not end it, as with the real discovery.
      mIsCancelled = false;
      mIsFinding = true;
      ++mRoundCount;
      while (!mIsCancelled && !aStop.stop_requested())
        std::this_thread::yield();
      mIsFinding = false;
      mLock.UnlockByWorker();
    }
  }

  FindLock& mLock;
  std::atomic<bool> mIsCancelled = false;
  std::atomic<bool> mIsFinding = false;
  std::atomic<int> mRoundCount = 0;
  std::atomic<int> mFailedTryCount = 0;
  std::jthread mThread;
};

} // namespace

TEST(FindLock, Free_IsTheWorkers) {
  FindLock lock;

  EXPECT_TRUE(lock.TryLock());
  lock.UnlockByWorker();
  EXPECT_TRUE(lock.TryLock());
}

TEST(FindLock, TryWhileTheWindowHasIt_WaitsAndFails) {
  FindLock lock;
  lock.LockByWindow(DoNothing);

  EXPECT_FALSE(lock.TryLock());
  EXPECT_FALSE(lock.TryLock());

  lock.UnlockByWindow();
  EXPECT_TRUE(lock.TryLock());
}

TEST(FindLock, TakenByTheWindowTwice_IsFreeAfterBothReleases) {
  FindLock lock;
  lock.LockByWindow(DoNothing);
  lock.LockByWindow(DoNothing);

  lock.UnlockByWindow();
  EXPECT_FALSE(lock.TryLock());

  lock.UnlockByWindow();
  EXPECT_TRUE(lock.TryLock());
}

TEST(FindLock, FreeLockTakenByTheWindow_CancelsNothing) {
  FindLock lock;
  int cancelCount = 0;

  lock.LockByWindow([&] { ++cancelCount; });

  EXPECT_EQ(cancelCount, 0);
}

TEST(FindLock, TryWhileTheWindowWaits_Fails) {
  FindLock lock;
  ASSERT_TRUE(lock.TryLock());
  std::atomic<bool> isWaiting = false;
  std::jthread window([&] {
    lock.LockByWindow([&] { isWaiting = true; });
    lock.UnlockByWindow();
  });
  EXPECT_TRUE(krtest::Await([&] { return isWaiting.load(); }));

  EXPECT_FALSE(lock.TryLock());

  lock.UnlockByWorker();
}

TEST(FindLock, WindowThatWaits_CancelsAgainAndAgainUntilTheLockIsFree) {
  constexpr int kCancelsUntilTheRoundEnds = 5;
  FindLock lock;
  ASSERT_TRUE(lock.TryLock());
  int cancelCount = 0;

  lock.LockByWindow([&] {
    if (++cancelCount == kCancelsUntilTheRoundEnds)
      lock.UnlockByWorker();
  });

  EXPECT_EQ(cancelCount, kCancelsUntilTheRoundEnds);
  EXPECT_FALSE(lock.TryLock());
}

TEST(FindLock, WorkerThatTakesItAgainAtOnce_DoesNotStarveTheWindow) {
  constexpr int kTimes = 200;
  FindLock lock;
  Worker worker(lock);
  worker.WaitForRoundBeyond(0);

  for (int i = 0; i < kTimes; ++i) {
    const int roundsBefore = worker.GetRoundCount();
    lock.LockByWindow([&] { worker.Cancel(); });

    EXPECT_FALSE(worker.IsFinding());
    EXPECT_LE(worker.GetRoundCount(), roundsBefore + 1) << "rounds begun while the window waited";
    lock.UnlockByWindow();
  }
}

TEST(FindLock, NoRoundBegins_WhileTheWindowHasTheLock) {
  FindLock lock;
  Worker worker(lock);
  worker.WaitForRoundBeyond(0);
  lock.LockByWindow([&] { worker.Cancel(); });
  const int rounds = worker.GetRoundCount();

  worker.WaitForFailedTryBeyond(worker.GetFailedTryCount() + 3);

  EXPECT_EQ(worker.GetRoundCount(), rounds);
  lock.UnlockByWindow();
  worker.WaitForRoundBeyond(rounds);
}

TEST(FindLock, WorkerStoppedWhileTheWindowHasTheLock_EndsAllTheSame) {
  FindLock lock;
  {
    Worker worker(lock);
    worker.WaitForRoundBeyond(0);
    lock.LockByWindow([&] { worker.Cancel(); });
  }

  lock.UnlockByWindow();
  EXPECT_TRUE(lock.TryLock());
}
