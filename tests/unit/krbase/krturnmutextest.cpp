#include "krbase/krturnmutex.h"

#include "await.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <cstddef>
#include <mutex>
#include <thread>
#include <vector>

namespace {

constexpr std::chrono::milliseconds kShortWait{200};

} // namespace

TEST(KrTurnMutex, Lock_BySeveralThreads_IsHeldByOneAtATime) {
  constexpr int kThreads = 4;
  constexpr int kTurns = 20000;
  KrTurnMutex lock;
  int turns = 0;
  {
    std::vector<std::jthread> threads;
    for (int i = 0; i < kThreads; ++i)
      threads.emplace_back([&] {
        for (int turn = 0; turn < kTurns; ++turn) {
          const std::lock_guard guard(lock);
          ++turns;
        }
      });
  }

  EXPECT_EQ(turns, kThreads * kTurns);
}

TEST(KrTurnMutex, Lock_TakenAgainAndAgainByTwoThreads_IsHadInTurn) {
  constexpr int kTurns = 100;
  KrTurnMutex lock;
  int last = 0; // Guarded by the lock, as the next two are: who had it last, and whether the other one waited then.
  bool isWaitedFor = false;
  int overtakings = 0;
  std::atomic<bool> isOver = false;
  const auto take = [&](int aName) {
    for (int turn = 0; turn < kTurns; ++turn) {
      const std::lock_guard guard(lock);
      overtakings += isWaitedFor && last == aName ? 1 : 0;
      last = aName;
      EXPECT_TRUE(krtest::Await([&] { return lock.CountWaiting() > 0 || isOver; }));
      isWaitedFor = lock.CountWaiting() > 0;
    }
    isOver = true;
  };

  std::jthread first(take, 1);
  std::jthread second(take, 2);
  first.join();
  second.join();

  EXPECT_EQ(overtakings, 0);
}

TEST(KrTurnMutex, Lock_AskedForBySeveralThreads_IsHadInTheirOrder) {
  constexpr std::size_t kThreads = 6;
  KrTurnMutex lock;
  std::vector<std::size_t> order;
  {
    std::vector<std::jthread> threads;
    const std::lock_guard holder(lock);
    for (std::size_t i = 0; i < kThreads; ++i) {
      threads.emplace_back([&, i] {
        const std::lock_guard guard(lock);
        order.push_back(i);
      });
      EXPECT_TRUE(krtest::Await([&] { return lock.CountWaiting() == i + 1; }));
    }
  }

  EXPECT_EQ(order, (std::vector<std::size_t>{0, 1, 2, 3, 4, 5}));
}

TEST(KrTurnMutex, Lock_TakenAgainByWhoGaveItUp_IsHadAfterAllWhoWait) {
  constexpr std::size_t kThreads = 3;
  KrTurnMutex lock;
  std::vector<std::size_t> order;
  std::vector<std::jthread> threads;
  lock.lock();
  for (std::size_t i = 0; i < kThreads; ++i)
    threads.emplace_back([&, i] {
      const std::lock_guard guard(lock);
      order.push_back(i);
    });
  EXPECT_TRUE(krtest::Await([&] { return lock.CountWaiting() == kThreads; }));

  lock.unlock();
  const std::lock_guard again(lock);

  EXPECT_EQ(order.size(), kThreads);
}

TEST(KrTurnMutex, TryLock_HeldOrFree_IsHadWhereItIsFree) {
  KrTurnMutex lock;

  const bool isHad = lock.try_lock();
  const bool isHadTwice = lock.try_lock();
  lock.unlock();
  const bool isHadAgain = lock.try_lock();
  lock.unlock();

  EXPECT_TRUE(isHad);
  EXPECT_FALSE(isHadTwice);
  EXPECT_TRUE(isHadAgain);
}

TEST(KrTurnMutex, TryLockUntil_BehindAHolder_GivesUpAndLeavesTheOthersTheirTurns) {
  KrTurnMutex lock;
  std::vector<int> order;
  std::vector<std::jthread> threads;
  lock.lock();
  const auto wait = [&](int aName) {
    const std::lock_guard guard(lock);
    order.push_back(aName);
  };
  threads.emplace_back(wait, 1);
  EXPECT_TRUE(krtest::Await([&] { return lock.CountWaiting() == 1; }));

  EXPECT_FALSE(lock.try_lock_until(std::chrono::steady_clock::now())) << "Last of those who wait.";
  std::atomic<bool> isLate = false;
  std::jthread late([&] {
    EXPECT_FALSE(lock.try_lock_until(std::chrono::steady_clock::now() + kShortWait));
    isLate = true;
  });
  EXPECT_TRUE(krtest::Await([&] { return lock.CountWaiting() == 2 || isLate; }));
  threads.emplace_back(wait, 2); // Behind one that gives up.
  late.join();
  EXPECT_TRUE(krtest::Await([&] { return lock.CountWaiting() == 2; }));
  threads.emplace_back(wait, 3);
  EXPECT_TRUE(krtest::Await([&] { return lock.CountWaiting() == 3; }));
  lock.unlock();
  threads.clear();

  EXPECT_EQ(order, (std::vector<int>{1, 2, 3}));
  EXPECT_EQ(lock.CountWaiting(), 0U);
}

TEST(KrTurnMutex, TryLockUntil_OfALockThatIsGivenUp_IsHad) {
  KrTurnMutex lock;
  lock.lock();
  bool isHad = false;
  std::jthread waiting([&] { isHad = lock.try_lock_until(std::chrono::steady_clock::now() + std::chrono::hours(1)); });
  EXPECT_TRUE(krtest::Await([&] { return lock.CountWaiting() == 1; }));

  lock.unlock();
  waiting.join();

  EXPECT_TRUE(isHad);
  EXPECT_FALSE(lock.try_lock());
  lock.unlock();
  EXPECT_TRUE(lock.try_lock_until(std::chrono::steady_clock::now())) << "A free one is had even when it is late.";
  lock.unlock();
}
