#pragma once
// An open queue with a worker's ticket, and what its tests do with one: wait for a message, take all, send from a
// thread.

#include "await.h"
#include "logic/frame/messagequeue.h"

#include <gmock/gmock.h>

#include <chrono>
#include <cstdint>
#include <future>
#include <memory>
#include <optional>
#include <vector>

#include <poll.h>

namespace krgui {

inline constexpr Message kFirst = {0x1401, 7, -1};
inline constexpr Message kSecond = {0x1E91, 8, 2};
inline constexpr Message kSent = {0x2B02, 1, 3};

inline bool IsReadable(const MessageQueue& aQueue, int aTimeoutMs = 0) {
  pollfd descriptor = {aQueue.GetWakeDescriptor(), POLLIN, 0};
  return ::poll(&descriptor, 1, aTimeoutMs) == 1 && (descriptor.revents & POLLIN) != 0;
}

inline bool WaitForMessage(const MessageQueue& aQueue) {
  return IsReadable(aQueue, krtest::GetGenerousMs());
}

inline std::vector<Message> TakeAll(MessageQueue& aQueue) {
  std::vector<Message> messages;
  while (std::optional<MessageQueue::Taken> taken = aQueue.Take()) {
    messages.push_back(taken->Get());
  }
  return messages;
}

using Answer = std::optional<std::int64_t>;

/// A worker thread in one send; the future ends with the send.
inline std::future<Answer> SendFromWorker(MessageQueue& aQueue, const std::shared_ptr<WorkerTicket>& aTicket,
                                          const Message& aMessage) {
  return std::async(std::launch::async, [&aQueue, aTicket, aMessage] { return aQueue.Send(aTicket, aMessage); });
}

inline bool HasEnded(const std::future<Answer>& aSend) {
  return aSend.wait_for(std::chrono::seconds(0)) == std::future_status::ready;
}

inline bool Ends(const std::future<Answer>& aSend) {
  return aSend.wait_for(krtest::GetGenerousLimit()) == std::future_status::ready;
}

class MessageQueueTest : public testing::Test {
protected:
  MessageQueueTest() { mQueue.Open(); }

  MessageQueue mQueue;
  std::shared_ptr<WorkerTicket> mTicket = std::make_shared<WorkerTicket>();
};

} // namespace krgui
