#include "writeturns.h"

#include "await.h"

#include <gtest/gtest.h>

#include <future>
#include <string>
#include <thread>

namespace krserial {

namespace {

void AwaitCount(const WriteTurns& aTurns, std::size_t aCount) {
  EXPECT_TRUE(krtest::Await([&] { return aTurns.Count() == aCount; }));
}

} // namespace

TEST(WriteTurns, WhoComesAgainAtOnce_WaitsForThoseBefore) {
  WriteTurns turns;
  std::string order; // Each adds to it in its turn.
  auto first = std::make_unique<WriteTurns::Turn>(turns, std::stop_token());
  const auto ask = [&](char aName) {
    const WriteTurns::Turn turn(turns, {});
    order += aName;
  };
  std::future<void> second = std::async(std::launch::async, ask, '2');
  AwaitCount(turns, 2);
  std::future<void> third = std::async(std::launch::async, ask, '3');
  AwaitCount(turns, 3);

  first.reset();
  ask('1');

  second.get();
  third.get();
  EXPECT_EQ(order, "231");
}

TEST(WriteTurns, AWaitThatIsCancelled_LeavesTheQueue) {
  WriteTurns turns;
  auto first = std::make_unique<WriteTurns::Turn>(turns, std::stop_token());
  std::stop_source cancel;
  std::future<bool> second =
      std::async(std::launch::async, [&] { return WriteTurns::Turn(turns, cancel.get_token()).IsMine(); });
  AwaitCount(turns, 2);
  std::future<bool> third = std::async(std::launch::async, [&] { return WriteTurns::Turn(turns, {}).IsMine(); });
  AwaitCount(turns, 3);

  cancel.request_stop();

  EXPECT_FALSE(second.get());
  first.reset();
  EXPECT_TRUE(third.get());
  EXPECT_EQ(turns.Count(), 0U);
}

} // namespace krserial
