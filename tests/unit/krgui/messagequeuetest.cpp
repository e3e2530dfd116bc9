#include "messagequeuefixture.h"

#include <gmock/gmock.h>

#include <cstdint>
#include <future>
#include <memory>
#include <optional>
#include <vector>

namespace krgui {

using testing::ElementsAre;

// Opening and closing.

TEST(MessageQueue, NeverOpened_AcceptsNothing) {
  MessageQueue queue;

  const Answer answer = queue.Send(std::make_shared<WorkerTicket>(), kSent);

  EXPECT_EQ(answer, std::nullopt);
  EXPECT_FALSE(queue.IsOpen());
  EXPECT_FALSE(queue.Post(kFirst));
  EXPECT_FALSE(queue.PostOnce(kFirst));
  EXPECT_FALSE(queue.Take().has_value());
  EXPECT_TRUE(queue.IsEmpty());
}

TEST_F(MessageQueueTest, Closed_AcceptsNothing) {
  mQueue.Close();

  const Answer answer = mQueue.Send(mTicket, kSent);

  EXPECT_EQ(answer, std::nullopt);
  EXPECT_FALSE(mQueue.IsOpen());
  EXPECT_FALSE(mQueue.Post(kFirst));
  EXPECT_FALSE(mQueue.PostOnce(kFirst));
  EXPECT_TRUE(mQueue.IsEmpty());
}

TEST_F(MessageQueueTest, Reopened_HasLostWhatWasPostedBefore) {
  mQueue.Post(kFirst);
  mQueue.Close();

  mQueue.Open();
  mQueue.Post(kSecond);

  EXPECT_THAT(TakeAll(mQueue), ElementsAre(kSecond));
}

TEST_F(MessageQueueTest, OpenedTwice_HasLostWhatWasPostedBefore) {
  mQueue.Post(kFirst);

  mQueue.Open();

  EXPECT_TRUE(mQueue.IsOpen());
  EXPECT_TRUE(mQueue.IsEmpty());
}

TEST_F(MessageQueueTest, Generation_CountsOpeningsAndClosings) {
  const std::uint64_t opened = mQueue.GetGeneration();

  mQueue.Close();
  const std::uint64_t closed = mQueue.GetGeneration();
  mQueue.Close();
  const std::uint64_t closedAgain = mQueue.GetGeneration();
  mQueue.Open();
  const std::uint64_t reopened = mQueue.GetGeneration();

  EXPECT_EQ(closed, opened + 1);
  EXPECT_EQ(closedAgain, closed) << "closing what is closed is no closing";
  EXPECT_EQ(reopened, closed + 1);
}

// Posts.

TEST_F(MessageQueueTest, Post_Several_AreTakenInOrder) {
  mQueue.Post(kFirst);
  mQueue.Post(kSecond);
  mQueue.Post(kFirst);

  const std::vector<Message> messages = TakeAll(mQueue);

  EXPECT_THAT(messages, ElementsAre(kFirst, kSecond, kFirst));
}

TEST_F(MessageQueueTest, PostOnce_EqualMessageWaits_IsAcceptedAndCoalesced) {
  mQueue.Post(kFirst);
  mQueue.Post(kSecond);

  const bool isAccepted = mQueue.PostOnce(kFirst);

  EXPECT_TRUE(isAccepted);
  EXPECT_THAT(TakeAll(mQueue), ElementsAre(kFirst, kSecond));
}

TEST_F(MessageQueueTest, PostOnce_EqualMessageWasTaken_IsAppendedAgain) {
  mQueue.PostOnce(kFirst);
  const std::optional<MessageQueue::Taken> running = mQueue.Take();

  mQueue.PostOnce(kFirst);

  EXPECT_THAT(TakeAll(mQueue), ElementsAre(kFirst));
}

TEST_F(MessageQueueTest, PostOnce_OneOfTwoEqualMessagesWasTaken_IsCoalescedWithTheOther) {
  mQueue.Post(kFirst);
  mQueue.Post(kFirst);
  mQueue.Take();

  mQueue.PostOnce(kFirst);

  EXPECT_THAT(TakeAll(mQueue), ElementsAre(kFirst));
}

TEST_F(MessageQueueTest, PostOnce_AfterReopening_IsNotCoalescedWithADroppedMessage) {
  mQueue.PostOnce(kFirst);
  mQueue.Close();
  mQueue.Open();

  mQueue.PostOnce(kFirst);

  EXPECT_THAT(TakeAll(mQueue), ElementsAre(kFirst));
}

TEST_F(MessageQueueTest, PostOnce_AnyPartDiffers_IsAppended) {
  const Message otherNumber = {kFirst.number + 1, kFirst.first, kFirst.second};
  const Message otherFirst = {kFirst.number, kFirst.first + 1, kFirst.second};
  const Message otherSecond = {kFirst.number, kFirst.first, kFirst.second + 1};
  mQueue.PostOnce(kFirst);

  mQueue.PostOnce(otherNumber);
  mQueue.PostOnce(otherFirst);
  mQueue.PostOnce(otherSecond);

  EXPECT_THAT(TakeAll(mQueue), ElementsAre(kFirst, otherNumber, otherFirst, otherSecond));
}

TEST_F(MessageQueueTest, Answer_ToAPostedMessage_HasNoEffect) {
  mQueue.Post(kFirst);

  mQueue.Take()->Answer(5);

  EXPECT_TRUE(mQueue.IsEmpty());
}

// The wake-up descriptor.

TEST_F(MessageQueueTest, WakeDescriptor_IsReadableExactlyWhilePostsWait) {
  const bool isReadableAtFirst = IsReadable(mQueue);
  mQueue.Post(kFirst);
  mQueue.Post(kSecond);
  const bool isReadableWithTwo = IsReadable(mQueue);
  mQueue.Take();
  const bool isReadableWithOne = IsReadable(mQueue);
  mQueue.Take();

  EXPECT_FALSE(isReadableAtFirst);
  EXPECT_TRUE(isReadableWithTwo);
  EXPECT_TRUE(isReadableWithOne);
  EXPECT_FALSE(IsReadable(mQueue));
}

TEST_F(MessageQueueTest, WakeDescriptor_SendTaken_IsNotReadableWhileItsHandlerRuns) {
  std::future<Answer> send = SendFromWorker(mQueue, mTicket, kSent);
  ASSERT_TRUE(WaitForMessage(mQueue));

  const std::optional<MessageQueue::Taken> running = mQueue.Take();

  EXPECT_FALSE(IsReadable(mQueue));
  mQueue.Close();
}

TEST_F(MessageQueueTest, WakeDescriptor_SendCancelled_IsNotReadable) {
  std::future<Answer> send = SendFromWorker(mQueue, mTicket, kSent);
  ASSERT_TRUE(WaitForMessage(mQueue));

  mQueue.CancelSends(mTicket);

  EXPECT_FALSE(IsReadable(mQueue));
}

TEST_F(MessageQueueTest, WakeDescriptor_Closed_IsNotReadableAndWakesAgainAfterReopening) {
  mQueue.Post(kFirst);

  mQueue.Close();
  const bool isReadableClosed = IsReadable(mQueue);
  mQueue.Open();
  const bool isReadableReopened = IsReadable(mQueue);
  mQueue.Post(kFirst);

  EXPECT_FALSE(isReadableClosed);
  EXPECT_FALSE(isReadableReopened);
  EXPECT_TRUE(IsReadable(mQueue));
}

} // namespace krgui
