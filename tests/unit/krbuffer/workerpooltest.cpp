#include "workerpool.h"

#include "threadrefusal.h"

#include <gtest/gtest.h>

#include <atomic>
#include <barrier>
#include <system_error>
#include <vector>

using krbuffer::WorkerPool;

namespace {

/// How often each part was done.
std::vector<int> CountParts(WorkerPool& aPool, std::uint32_t aPartCount) {
  std::vector<std::atomic<int>> counts(aPartCount);
  aPool.Run(aPartCount, [&counts](std::uint32_t aPart) { ++counts[aPart]; });
  return {counts.begin(), counts.end()};
}

} // namespace

TEST(WorkerPool, Run_DoesEveryPartOnce) {
  WorkerPool pool(3);

  EXPECT_EQ(CountParts(pool, 1000), std::vector<int>(1000, 1));
}

TEST(WorkerPool, RunWithoutParts_ReturnsAtOnce) {
  WorkerPool pool(2);

  EXPECT_EQ(CountParts(pool, 0), std::vector<int>());
}

TEST(WorkerPool, PoolWithoutThreads_LeavesAllPartsToTheCaller) {
  WorkerPool pool(0);

  EXPECT_EQ(CountParts(pool, 10), std::vector<int>(10, 1));
}

TEST(WorkerPool, PartsThatWaitForEachOther_RunAtTheSameTime) {
  WorkerPool pool(2);
  std::barrier allThree(3);
  std::atomic<int> passed = 0;

  pool.Run(3, [&](std::uint32_t) {
    allThree.arrive_and_wait();
    ++passed;
  });

  EXPECT_EQ(passed, 3);
}

TEST(WorkerPool, SeveralCallers_EachGetTheirOwnPartsDone) {
  WorkerPool pool(2);
  std::atomic<int> wrong = 0;

  {
    std::vector<std::jthread> callers;
    for (int caller = 0; caller < 4; ++caller)
      callers.emplace_back([&] {
        for (int round = 0; round < 50; ++round)
          if (CountParts(pool, 37) != std::vector<int>(37, 1))
            ++wrong;
      });
  }

  EXPECT_EQ(wrong, 0);
}

TEST(WorkerPool, RefusedThread_ThrowsSystemError) {
  const ThreadRefusal refusal;

  EXPECT_THROW(WorkerPool(2), std::system_error);
}
