#include "messagequeuefixture.h"

#include <gmock/gmock.h>

#include <atomic>
#include <cstdint>
#include <future>
#include <memory>
#include <optional>
#include <thread>
#include <utility>
#include <vector>

namespace krgui {

using testing::ElementsAre;

// Sends.

TEST_F(MessageQueueTest, Send_WhileAPostWaits_IsTakenFirst) {
  // Whether the send arrives before the post is taken is a race; a queue that kept the order of arrival would never
  // show the send first.
  constexpr int kAttempts = 10000;
  bool isSendFirst = false;

  for (int attempt = 0; attempt < kAttempts && !isSendFirst; ++attempt) {
    std::future<Answer> worker = std::async(std::launch::async, [this] {
      mQueue.Post(kFirst);
      return mQueue.Send(mTicket, kSent);
    });
    ASSERT_TRUE(WaitForMessage(mQueue));
    isSendFirst = mQueue.Take()->Get() == kSent;
    ASSERT_TRUE(WaitForMessage(mQueue));
    mQueue.Take();
    EXPECT_EQ(worker.get(), Answer(0));
  }

  EXPECT_TRUE(isSendFirst);
}

TEST_F(MessageQueueTest, Send_HandlerAnswers_GivesTheAnswer) {
  std::future<Answer> send = SendFromWorker(mQueue, mTicket, kSent);
  ASSERT_TRUE(WaitForMessage(mQueue));

  mQueue.Take()->Answer(-42);

  EXPECT_EQ(send.get(), Answer(-42));
}

TEST_F(MessageQueueTest, Send_HandlerAnswersNothing_GivesZero) {
  std::future<Answer> send = SendFromWorker(mQueue, mTicket, kSent);
  ASSERT_TRUE(WaitForMessage(mQueue));

  mQueue.Take();

  EXPECT_EQ(send.get(), Answer(0));
}

TEST_F(MessageQueueTest, Send_HandlerStillRuns_Waits) {
  std::future<Answer> send = SendFromWorker(mQueue, mTicket, kSent);
  ASSERT_TRUE(WaitForMessage(mQueue));

  std::optional<MessageQueue::Taken> taken = mQueue.Take();
  taken->Answer(1);
  MessageQueue::Taken moved = std::move(*taken);
  taken.reset();

  EXPECT_FALSE(HasEnded(send));
  moved.Answer(2);
  { const MessageQueue::Taken ends = std::move(moved); }
  EXPECT_EQ(send.get(), Answer(2));
}

TEST_F(MessageQueueTest, Send_WithoutTicket_IsAnswered) {
  std::future<Answer> send = SendFromWorker(mQueue, nullptr, kSent);
  ASSERT_TRUE(WaitForMessage(mQueue));

  mQueue.Take()->Answer(9);

  EXPECT_EQ(send.get(), Answer(9));
}

TEST_F(MessageQueueTest, Send_OnTheTakingThread_EndsAtOnceWithNothing) {
  const Answer answer = mQueue.Send(mTicket, kSent);

  EXPECT_EQ(answer, std::nullopt);
  EXPECT_TRUE(mQueue.IsEmpty());
}

TEST_F(MessageQueueTest, Send_InsideTheHandlerOfAnother_IsAnsweredInside) {
  std::future<Answer> outer = SendFromWorker(mQueue, mTicket, kSent);
  ASSERT_TRUE(WaitForMessage(mQueue));
  std::optional<MessageQueue::Taken> handling = mQueue.Take();
  std::future<Answer> inner = SendFromWorker(mQueue, std::make_shared<WorkerTicket>(), kSecond);
  ASSERT_TRUE(WaitForMessage(mQueue));

  mQueue.Take()->Answer(2);

  EXPECT_EQ(inner.get(), Answer(2));
  EXPECT_FALSE(HasEnded(outer));
  handling->Answer(1);
  handling.reset();
  EXPECT_EQ(outer.get(), Answer(1));
}

// Ends of sends.

TEST_F(MessageQueueTest, CancelSends_WhileOneWaits_EndsAndWithdrawsIt) {
  std::future<Answer> send = SendFromWorker(mQueue, mTicket, kSent);
  ASSERT_TRUE(WaitForMessage(mQueue));

  mQueue.CancelSends(mTicket);

  EXPECT_EQ(send.get(), std::nullopt);
  EXPECT_TRUE(mQueue.IsEmpty());
  EXPECT_FALSE(mQueue.Take().has_value());
}

TEST_F(MessageQueueTest, CancelSends_WhileTheHandlerRuns_EndsTheSendAtOnce) {
  std::future<Answer> send = SendFromWorker(mQueue, mTicket, kSent);
  ASSERT_TRUE(WaitForMessage(mQueue));
  std::optional<MessageQueue::Taken> running = mQueue.Take();

  mQueue.CancelSends(mTicket);

  ASSERT_TRUE(Ends(send)) << "the handler has not ended yet";
  EXPECT_EQ(send.get(), std::nullopt);
  running->Answer(5);
}

TEST_F(MessageQueueTest, CancelSends_EarlierThanTheSend_EndsItAtOnce) {
  mQueue.CancelSends(mTicket);

  std::future<Answer> send = SendFromWorker(mQueue, mTicket, kSent);

  EXPECT_EQ(send.get(), std::nullopt);
  EXPECT_TRUE(mQueue.IsEmpty());
}

TEST_F(MessageQueueTest, CancelSends_OfOneWorker_LeavesTheOthersAndPosts) {
  const auto otherTicket = std::make_shared<WorkerTicket>();
  std::future<Answer> send = SendFromWorker(mQueue, otherTicket, kSent);
  ASSERT_TRUE(WaitForMessage(mQueue));
  mQueue.Post(kFirst);

  mQueue.CancelSends(mTicket);
  mQueue.CancelSends(nullptr);

  EXPECT_FALSE(HasEnded(send));
  EXPECT_THAT(TakeAll(mQueue), ElementsAre(kSent, kFirst));
  EXPECT_EQ(send.get(), Answer(0));
}

TEST_F(MessageQueueTest, CancelSends_WorkerThatSendsForEver_CanBeJoined) {
  std::thread worker([this] {
    while (mQueue.Send(mTicket, kSent).has_value()) {
    }
  });
  for (int handled = 0; handled < 3; ++handled) {
    ASSERT_TRUE(WaitForMessage(mQueue));
    mQueue.Take();
  }

  mQueue.CancelSends(mTicket);
  worker.join();

  EXPECT_TRUE(mQueue.IsEmpty());
}

TEST_F(MessageQueueTest, Close_WhileASendWaits_EndsIt) {
  std::future<Answer> send = SendFromWorker(mQueue, mTicket, kSent);
  ASSERT_TRUE(WaitForMessage(mQueue));

  mQueue.Close();

  EXPECT_EQ(send.get(), std::nullopt);
  EXPECT_TRUE(mQueue.IsEmpty());
}

TEST_F(MessageQueueTest, Close_InsideTheHandlerOfASend_EndsTheSendAtOnce) {
  std::future<Answer> send = SendFromWorker(mQueue, mTicket, kSent);
  ASSERT_TRUE(WaitForMessage(mQueue));
  std::optional<MessageQueue::Taken> running = mQueue.Take();

  mQueue.Close();

  ASSERT_TRUE(Ends(send)) << "the handler has not ended yet";
  EXPECT_EQ(send.get(), std::nullopt);
  running->Answer(5);
}

TEST_F(MessageQueueTest, Reopened_InsideTheHandlerOfASend_GivesTheAnswerToNobody) {
  std::future<Answer> old = SendFromWorker(mQueue, mTicket, kSent);
  ASSERT_TRUE(WaitForMessage(mQueue));
  std::optional<MessageQueue::Taken> running = mQueue.Take();
  mQueue.Close();
  mQueue.Open();
  std::future<Answer> fresh = SendFromWorker(mQueue, mTicket, kSent);
  ASSERT_TRUE(WaitForMessage(mQueue));

  running->Answer(5);
  running.reset();
  mQueue.Take()->Answer(6);

  EXPECT_EQ(old.get(), std::nullopt);
  EXPECT_EQ(fresh.get(), Answer(6));
}

TEST(MessageQueue, Destroyed_WhileASendWaits_EndsIt) {
  auto queue = std::make_unique<MessageQueue>();
  queue->Open();
  std::future<Answer> send = SendFromWorker(*queue, std::make_shared<WorkerTicket>(), kSent);
  ASSERT_TRUE(WaitForMessage(*queue));

  queue.reset();

  EXPECT_EQ(send.get(), std::nullopt);
}

TEST(MessageQueue, Destroyed_WhileAHandlerRuns_LeavesTheMessageReadable) {
  auto queue = std::make_unique<MessageQueue>();
  queue->Open();
  queue->Post(kFirst);
  std::optional<MessageQueue::Taken> running = queue->Take();

  queue.reset();

  EXPECT_EQ(running->Get(), kFirst);
}

// Many threads.

namespace {

constexpr std::uint32_t kCounted = 1;
constexpr std::uint32_t kAsked = 2;
constexpr std::uint32_t kLookAgain = 3;
constexpr std::uint32_t kDone = 4;
constexpr int kWorkers = 4;
constexpr int kRounds = 500;

/// Posts, coalesced posts and sends of one worker; counts the sends that got the right answer.
void Work(MessageQueue& aQueue, const std::shared_ptr<WorkerTicket>& aTicket, int aWorker, std::atomic<int>& aRight) {
  for (int round = 0; round < kRounds; ++round) {
    const auto worker = static_cast<std::uint64_t>(aWorker);
    aQueue.Post({kCounted, worker, round});
    aQueue.PostOnce({kLookAgain, 0, 0});
    if (aQueue.Send(aTicket, {kAsked, worker, round}) == Answer(round + aWorker)) {
      ++aRight;
    }
  }
  aQueue.Post({kDone, 0, 0});
}

} // namespace

TEST_F(MessageQueueTest, ManyWorkers_EveryMessageArrivesInItsWorkersOrderAndEverySendGetsItsAnswer) {
  std::atomic<int> rightAnswers = 0;
  std::vector<std::thread> workers;
  for (int worker = 0; worker < kWorkers; ++worker) {
    workers.emplace_back([&, worker] { Work(mQueue, mTicket, worker, rightAnswers); });
  }

  std::vector<std::int64_t> next(kWorkers, 0);
  int lookAgains = 0;
  for (int done = 0; done < kWorkers;) {
    if (!WaitForMessage(mQueue)) {
      ADD_FAILURE() << "no message came";
      break;
    }
    std::optional<MessageQueue::Taken> taken = mQueue.Take();
    const Message message = taken->Get();
    done += message.number == kDone ? 1 : 0;
    lookAgains += message.number == kLookAgain ? 1 : 0;
    if (message.number == kCounted) {
      EXPECT_EQ(message.second, next[message.first]++);
    }
    taken->Answer(message.second + static_cast<std::int64_t>(message.first));
  }
  mQueue.CancelSends(mTicket);
  for (std::thread& worker : workers) {
    worker.join();
  }

  EXPECT_EQ(rightAnswers, kWorkers * kRounds);
  EXPECT_THAT(next, testing::Each(kRounds));
  EXPECT_GE(lookAgains, 1);
  EXPECT_LE(lookAgains, kWorkers * kRounds);
}

TEST_F(MessageQueueTest, ManyWorkers_WindowOpensAndClosesAllTheTime_NoSendHangsOrGetsAStrangersAnswer) {
  std::atomic<bool> isStopped = false;
  std::atomic<int> strangersAnswers = 0;
  std::vector<std::thread> workers;
  for (int worker = 0; worker < kWorkers; ++worker) {
    workers.emplace_back([&, worker] {
      for (std::int64_t round = 0; !isStopped; ++round) {
        const Answer answer = mQueue.Send(mTicket, {kAsked, static_cast<std::uint64_t>(worker), round});
        strangersAnswers += answer.has_value() && *answer != round * kWorkers + worker ? 1 : 0;
        mQueue.PostOnce({kLookAgain, 0, 0});
      }
    });
  }

  for (int opening = 0; opening < kRounds && WaitForMessage(mQueue); ++opening) {
    std::optional<MessageQueue::Taken> taken = mQueue.Take();
    taken->Answer(taken->Get().second * kWorkers + static_cast<std::int64_t>(taken->Get().first));
    if (opening % 3 == 0) {
      mQueue.Close();
      mQueue.Open();
    }
  }
  isStopped = true;
  mQueue.CancelSends(mTicket);
  for (std::thread& worker : workers) {
    worker.join();
  }

  EXPECT_EQ(strangersAnswers, 0);
  EXPECT_EQ(mQueue.GetGeneration(), 1U + 2U * ((kRounds + 2) / 3)) << "every opening was reached";
}

} // namespace krgui
