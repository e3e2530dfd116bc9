#include "gencp/piecesize.h"

#include <gtest/gtest.h>

namespace krcamerabridge {
namespace {

using Failure = PieceSize::Failure;

// As long as it goes well with a size, at most so many times.
void SucceedUntilTrial(PieceSize& aSize, int aMost = 10000) {
  const std::size_t size = aSize.Get();
  for (int i = 0; i < aMost && aSize.Get() == size; ++i)
    aSize.Succeed(size);
}

int CountUntilTrial(PieceSize& aSize) {
  const std::size_t size = aSize.Get();
  int count = 0;
  while (aSize.Get() == size) {
    aSize.Succeed(size);
    ++count;
  }
  return count;
}

TEST(PieceSize, AtFirst_IsTheLargest) {
  const PieceSize size(1000);

  EXPECT_EQ(size.Get(), 1000u);
  EXPECT_FALSE(size.IsTrial(1000));
  EXPECT_FALSE(size.IsLimit());
}

TEST(PieceSize, Refusal_HalvesIt) {
  PieceSize size(1000);

  EXPECT_TRUE(size.Fail(1000, Failure::TooLarge));
  EXPECT_EQ(size.Get(), 500u);
  EXPECT_TRUE(size.Fail(484, Failure::TooLarge)) << "of a piece that was smaller";
  EXPECT_EQ(size.Get(), 242u);
}

TEST(PieceSize, Silence_MakesItTheSmallest) {
  PieceSize size(1000);

  EXPECT_TRUE(size.Fail(1000, Failure::Silent));

  EXPECT_EQ(size.Get(), 64u);
}

TEST(PieceSize, UnrelatedFailure_LeavesIt) {
  PieceSize size(1000);

  EXPECT_FALSE(size.Fail(1000, Failure::Unrelated));

  EXPECT_EQ(size.Get(), 1000u);
}

TEST(PieceSize, FailureOfTheSmallest_TakesTheReductionBack) {
  PieceSize size(1000);
  ASSERT_TRUE(size.Fail(1000, Failure::Silent));

  EXPECT_FALSE(size.Fail(64, Failure::Silent));

  EXPECT_EQ(size.Get(), 1000u);
}

TEST(PieceSize, FailureOfTheSmallestAfterASuccess_LeavesIt) {
  PieceSize size(1000);
  ASSERT_TRUE(size.Fail(1000, Failure::Silent));
  size.Succeed(64);

  EXPECT_FALSE(size.Fail(64, Failure::Silent));

  EXPECT_EQ(size.Get(), 64u);
}

TEST(PieceSize, Successes_BringItBackToTheLargest) {
  PieceSize size(1000);
  ASSERT_TRUE(size.Fail(1000, Failure::Silent));
  for (const std::size_t next : {128u, 256u, 512u, 1000u}) {
    SucceedUntilTrial(size);
    EXPECT_EQ(size.Get(), next);
    EXPECT_TRUE(size.IsTrial(next));
    size.Succeed(next);
    EXPECT_EQ(size.Get(), next);
    EXPECT_FALSE(size.IsTrial(next));
  }

  SucceedUntilTrial(size);
  EXPECT_EQ(size.Get(), 1000u);
  EXPECT_FALSE(size.IsLimit());
}

TEST(PieceSize, TrialThatFails_IsMadeMoreAndMoreSeldom) {
  PieceSize size(1000);
  ASSERT_TRUE(size.Fail(1000, Failure::Silent));
  int last = CountUntilTrial(size);
  EXPECT_EQ(last, 8);
  for (int i = 0; i < 9; ++i) {
    EXPECT_TRUE(size.Fail(128, Failure::Silent));
    EXPECT_EQ(size.Get(), 64u);
    const int next = CountUntilTrial(size);
    EXPECT_EQ(next, 2 * last);
    last = next;
  }

  EXPECT_TRUE(size.Fail(128, Failure::Silent));
  EXPECT_EQ(CountUntilTrial(size), 4096) << "but not for ever";
}

TEST(PieceSize, SmallPieceDuringATrial_SaysNothingOfIt) {
  PieceSize size(1000);
  ASSERT_TRUE(size.Fail(1000, Failure::Silent));
  SucceedUntilTrial(size);
  ASSERT_EQ(size.Get(), 128u);

  EXPECT_FALSE(size.IsTrial(4));
  size.Succeed(4);
  EXPECT_FALSE(size.Fail(4, Failure::Silent));

  EXPECT_EQ(size.Get(), 128u);
  EXPECT_TRUE(size.IsTrial(128));
}

TEST(PieceSize, OneBadMoment_IsNoLimitButTwoAre) {
  PieceSize size(1000);
  ASSERT_TRUE(size.Fail(1000, Failure::Silent));
  EXPECT_FALSE(size.IsLimit());
  SucceedUntilTrial(size);

  EXPECT_TRUE(size.Fail(128, Failure::Silent));

  EXPECT_TRUE(size.IsLimit());
  SucceedUntilTrial(size);
  size.Succeed(128);
  EXPECT_FALSE(size.IsLimit()) << "as more has gone well";
}

} // namespace
} // namespace krcamerabridge
