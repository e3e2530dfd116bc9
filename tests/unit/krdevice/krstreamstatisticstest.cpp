#include "streamfixture.h"

#include "await.h"

#include <atomic>
#include <thread>

namespace {

class KrStreamStatisticsTest : public StreamTest {};

} // namespace

TEST_F(KrStreamStatisticsTest, GetStatistics_RunningAndStopped_AreTheSources) {
  KrStream stream(mDevice);
  mSource.statistics = {1, 2, 3, 4, 5, 6};
  EXPECT_EQ(stream.GetStatistics().received, 0u) << "never started";
  ASSERT_TRUE(stream.Start().IsOK());
  const KrStreamStatistics running = stream.GetStatistics();

  stream.Stop();
  mSource.statistics = {};

  for (const KrStreamStatistics& counted : {running, stream.GetStatistics()}) {
    EXPECT_EQ(counted.received, 1u);
    EXPECT_EQ(counted.incomplete, 2u);
    EXPECT_EQ(counted.missingPackets, 3u);
    EXPECT_EQ(counted.resentPackets, 4u);
    EXPECT_EQ(counted.discarded, 5u);
    EXPECT_EQ(counted.bytes, 6u);
  }
}

TEST_F(KrStreamStatisticsTest, GetStatistics_NumbersSkipped_AreMissingFramesWithoutTheDiscardedOnes) {
  KrStream stream(mDevice, 4);
  ASSERT_TRUE(stream.Start().IsOK());
  for (const std::uint64_t id : {1, 2, 5}) {
    ASSERT_TRUE(mSource.Push(id));
    ASSERT_TRUE(WaitForFrame(stream).IsOK());
  }
  EXPECT_EQ(stream.GetStatistics().missingFrames, 2u);

  mSource.Discard();
  mSource.Discard();
  ASSERT_TRUE(mSource.Push(9));
  ASSERT_TRUE(WaitForFrame(stream).IsOK());

  EXPECT_EQ(stream.GetStatistics().missingFrames, 3u);
  EXPECT_EQ(stream.GetStatistics().discarded, 2u);
}

TEST_F(KrStreamStatisticsTest, GetStatistics_AbortedFrame_IsNotFollowed) {
  KrStream stream(mDevice, 4);
  ASSERT_TRUE(stream.Start().IsOK());
  ASSERT_TRUE(mSource.Push(1));
  ASSERT_TRUE(WaitForFrame(stream).IsOK());

  ASSERT_TRUE(mSource.Push(77, KrBufferStatus::Aborted));
  ASSERT_TRUE(WaitForFrame(stream).IsOK());

  EXPECT_EQ(stream.GetStatistics().missingFrames, 0u);
}

TEST_F(KrStreamStatisticsTest, GetStatistics_ShownAndMissing_StayAfterStopAndBeginAnewWithTheNextStart) {
  KrStream stream(mDevice, 4);
  ASSERT_TRUE(stream.Start().IsOK());
  for (const std::uint64_t id : {1, 4}) {
    ASSERT_TRUE(mSource.Push(id));
    ASSERT_TRUE(WaitForFrame(stream).IsOK());
    stream.CountShown();
  }

  stream.Stop();
  const KrStreamStatistics stopped = stream.GetStatistics();
  ASSERT_TRUE(stream.Start().IsOK());
  const KrStreamStatistics startedAgain = stream.GetStatistics();

  EXPECT_EQ(stopped.shown, 2u);
  EXPECT_EQ(stopped.missingFrames, 2u);
  EXPECT_EQ(startedAgain.shown, 0u);
  EXPECT_EQ(startedAgain.missingFrames, 0u);
}

TEST_F(KrStreamStatisticsTest, GetStatistics_WhileFramesArriveAndAreShown_NeverDecreasesAndShowsNoMoreThanArrived) {
  KrStream stream(mDevice, 4);
  ASSERT_TRUE(stream.Start().IsOK());
  std::thread consumer([&] {
    while (WaitForFrame(stream).IsOK())
      stream.CountShown();
  });
  std::atomic<bool> ended = false;
  std::thread producer([&] {
    // Every second number is skipped.
    for (std::uint64_t id = 1; id <= 2000; id += 2)
      EXPECT_TRUE(krtest::Await([&] { return mSource.Push(id); }));
    ended = true;
  });

  KrStreamStatistics last;
  while (!ended) {
    const KrStreamStatistics now = stream.GetStatistics();
    EXPECT_GE(now.received, last.received);
    EXPECT_GE(now.missingFrames, last.missingFrames);
    EXPECT_GE(now.shown, last.shown);
    EXPECT_LE(now.shown, now.received);
    EXPECT_LE(now.missingFrames, now.received);
    last = now;
  }

  producer.join();
  stream.Stop();
  consumer.join();
}
