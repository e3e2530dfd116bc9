#include "serial/sendqueue.h"

#include "await.h"
#include "scriptedline.h"

#include <gmock/gmock.h>

#include <atomic>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace krgui {

namespace {

using std::chrono::hours;
using std::chrono::milliseconds;
using testing::ElementsAre;
using testing::IsEmpty;

std::vector<std::uint8_t> ToBytes(const std::string& aText) {
  return {aText.begin(), aText.end()};
}

/// Runs a queue on a writer's thread; what the line was given is looked at when it has ended.
class SendQueueTest : public testing::Test {
protected:
  void Start() {
    mWriter = std::jthread([this](const std::stop_token& aStop) { mQueue.Run(mLine, aStop); });
  }
  void End() {
    mWriter.request_stop();
    mWriter.join();
  }

  /// From now on a write waits until it is stopped.
  void Block() {
    mLine.onWrite = [this](const std::string&, const std::stop_token& aStop) {
      mIsBlocked = true;
      mIsBlocked.notify_all();
      EXPECT_TRUE(krtest::Await([&] { return aStop.stop_requested(); }));
      return std::pair(KrResult(KrResult::Code::Aborted), std::size_t{0});
    };
  }

  krtest::ScriptedLine mLine;
  std::atomic<int> mTakesAgain = 0; ///< How often the queue has told of it.
  SendQueue mQueue{10, [this] {
                     ++mTakesAgain;
                     mTakesAgain.notify_all();
                   }};
  std::atomic<bool> mIsBlocked = false;
  std::jthread mWriter;
};

TEST_F(SendQueueTest, Messages_AreWrittenInOrderOneWriteEach) {
  EXPECT_TRUE(mQueue.Put(ToBytes("one")));
  EXPECT_TRUE(mQueue.Put(ToBytes("")));
  EXPECT_TRUE(mQueue.Put(ToBytes("two")));

  Start();
  mQueue.AwaitEmpty(hours(1));
  End();

  EXPECT_THAT(mLine.writes, ElementsAre("one", "", "two"));
}

TEST_F(SendQueueTest, MessagesWhileTheWriterRuns_AreWritten) {
  Start();

  for (const char* text : {"a", "b", "c"}) {
    EXPECT_TRUE(mQueue.Put(ToBytes(text)));
    mQueue.AwaitEmpty(hours(1));
  }
  End();

  EXPECT_THAT(mLine.writes, ElementsAre("a", "b", "c"));
}

TEST_F(SendQueueTest, FailedWrite_IsFollowedByTheNextMessage) {
  mLine.onWrite = [](const std::string&, const std::stop_token&) {
    return std::pair(KrResult(KrResult::Code::ConnectionLost), std::size_t{0});
  };
  EXPECT_TRUE(mQueue.Put(ToBytes("one")));
  EXPECT_TRUE(mQueue.Put(ToBytes("two")));

  Start();
  mQueue.AwaitEmpty(hours(1));
  End();

  EXPECT_THAT(mLine.writes, ElementsAre("one", "two"));
}

TEST_F(SendQueueTest, MessagesUpToTheLimit_FitAndNoMore) {
  EXPECT_TRUE(mQueue.Put(ToBytes("123456")));
  EXPECT_FALSE(mQueue.Put(ToBytes("12345")));
  EXPECT_TRUE(mQueue.Put(ToBytes("1234")));
  EXPECT_FALSE(mQueue.Put({}));

  EXPECT_EQ(mQueue.CountPut(), 2U);
}

TEST_F(SendQueueTest, EmptyMessages_AreLimitedToo) {
  for (int index = 0; index < 10; ++index)
    EXPECT_TRUE(mQueue.Put({}));

  EXPECT_FALSE(mQueue.Put({}));
}

TEST_F(SendQueueTest, MessageThatFits_IsToldOfBeforeItCanBeWritten) {
  std::size_t writesBefore = 1;
  Start();

  EXPECT_TRUE(mQueue.Put(ToBytes("one"), [&] { writesBefore = mLine.writes.size(); }));
  mQueue.AwaitEmpty(hours(1));
  End();

  EXPECT_EQ(writesBefore, 0U);
  EXPECT_THAT(mLine.writes, ElementsAre("one"));
}

TEST_F(SendQueueTest, MessageThatDoesNotFit_IsNotToldOf) {
  bool isTold = false;

  EXPECT_FALSE(mQueue.Put(std::vector<std::uint8_t>(11), [&] { isTold = true; }));

  EXPECT_FALSE(isTold);
}

TEST_F(SendQueueTest, EmptiedAfterARefusal_IsToldOnce) {
  EXPECT_TRUE(mQueue.Put(ToBytes("123456")));
  EXPECT_FALSE(mQueue.Put(ToBytes("12345")));
  EXPECT_TRUE(mQueue.Put(ToBytes("1234")));

  Start();
  mTakesAgain.wait(0);
  EXPECT_TRUE(mQueue.IsEmpty());
  EXPECT_TRUE(mQueue.Put(ToBytes("1")));
  mQueue.AwaitEmpty(hours(1));
  End();

  EXPECT_EQ(mTakesAgain, 1);
}

TEST_F(SendQueueTest, MessageLargerThanTheLimit_NeverFits) {
  EXPECT_FALSE(mQueue.Put(std::vector<std::uint8_t>(11)));
}

TEST_F(SendQueueTest, WrittenMessages_LeaveRoom) {
  Start();

  EXPECT_TRUE(mQueue.Put(ToBytes("1234567890")));
  mQueue.AwaitEmpty(hours(1));

  EXPECT_TRUE(mQueue.Put(ToBytes("1234567890")));
}

TEST_F(SendQueueTest, MessageThatIsBeingWritten_StillCounts) {
  Block();
  Start();
  EXPECT_TRUE(mQueue.Put(ToBytes("1234567890")));

  mIsBlocked.wait(false);

  EXPECT_FALSE(mQueue.Put(ToBytes("1")));
}

TEST_F(SendQueueTest, Stop_EndsABlockedWriteAndWritesNothingMore) {
  Block();
  Start();
  EXPECT_TRUE(mQueue.Put(ToBytes("one")));
  EXPECT_TRUE(mQueue.Put(ToBytes("two")));
  mIsBlocked.wait(false);

  End();

  EXPECT_THAT(mLine.writes, ElementsAre("one"));
}

TEST_F(SendQueueTest, StoppedBeforeItStarts_WritesNothing) {
  EXPECT_TRUE(mQueue.Put(ToBytes("one")));
  std::stop_source stop;
  stop.request_stop();

  mQueue.Run(mLine, stop.get_token());

  EXPECT_THAT(mLine.writes, IsEmpty());
}

TEST_F(SendQueueTest, AwaitWritten_ReturnsWhenThoseBeforeAreOut) {
  std::atomic<bool> wentOut = false;
  mLine.onWrite = [&](const std::string& aBytes, const std::stop_token&) {
    wentOut = true;
    return std::pair(KrResult(), aBytes.size());
  };
  EXPECT_TRUE(mQueue.Put(ToBytes("one")));
  Start();

  mQueue.AwaitWritten(mQueue.CountPut(), {});

  EXPECT_TRUE(wentOut);
}

TEST_F(SendQueueTest, AwaitWritten_IsEndedByAStop) {
  EXPECT_TRUE(mQueue.Put(ToBytes("one")));
  std::jthread waiting([this](const std::stop_token& aStop) { mQueue.AwaitWritten(1, aStop); });

  waiting.request_stop();
  waiting.join();

  EXPECT_THAT(mLine.writes, IsEmpty());
}

TEST_F(SendQueueTest, AwaitEmpty_EndsWithItsLimitWhileTheLineTakesNothing) {
  Block();
  Start();
  EXPECT_TRUE(mQueue.Put(ToBytes("one")));
  mIsBlocked.wait(false);

  mQueue.AwaitEmpty(milliseconds(1));

  EXPECT_FALSE(mQueue.Put(ToBytes("12345678"))) << "the message is still being written";
}

} // namespace

} // namespace krgui
