#include "logic/frame/messagequeue.h"

#include "krbase/wakeevent.h"

#include <algorithm>
#include <atomic>
#include <condition_variable>
#include <cstddef>
#include <deque>
#include <functional>
#include <mutex>
#include <thread>
#include <unordered_map>
#include <utility>

namespace krgui {

namespace {

struct MessageHash {
  std::size_t operator()(const Message& aMessage) const {
    // The parameters are mostly row numbers and small codes; a multiplication by an odd constant spreads them.
    constexpr std::uint64_t kSpread = 0x9E3779B97F4A7C15U;
    std::uint64_t value = aMessage.number;
    value = (value ^ aMessage.first) * kSpread;
    value = (value ^ (value >> 32U) ^ static_cast<std::uint64_t>(aMessage.second)) * kSpread;
    return static_cast<std::size_t>(value ^ (value >> 32U));
  }
};

/// The posted messages in order, which knows at once whether an equal one waits: a camera with thousands of rows must
/// not make every "look again" a search through all that wait.
class PostedMessages {
public:
  bool IsEmpty() const { return mInOrder.empty(); }
  bool Contains(const Message& aMessage) const { return mCounts.contains(aMessage); }

  void Append(const Message& aMessage) {
    mInOrder.push_back(aMessage);
    ++mCounts[aMessage];
  }

  Message TakeFirst() {
    const Message message = mInOrder.front();
    mInOrder.pop_front();
    const auto found = mCounts.find(message);
    if (--found->second == 0) {
      mCounts.erase(found);
    }
    return message;
  }

  void Clear() {
    mInOrder.clear();
    mCounts.clear();
  }

private:
  std::deque<Message> mInOrder;
  std::unordered_map<Message, std::size_t, MessageHash> mCounts;
};

/// One send, shared by the waiting sender and by whoever handles it. Guarded by the queue's mutex.
struct PendingSend {
  Message message;
  std::shared_ptr<WorkerTicket> ticket;
  bool isOver = false;
  std::optional<std::int64_t> answer;
  std::condition_variable over;
};

using PendingSends = std::deque<std::shared_ptr<PendingSend>>;

void EndSend(PendingSend& aSend, std::optional<std::int64_t> aAnswer) {
  aSend.isOver = true;
  aSend.answer = aAnswer;
  aSend.over.notify_one();
}

void EndSendsOf(PendingSends& aSends, const std::shared_ptr<WorkerTicket>& aTicket) {
  std::erase_if(aSends, [&aTicket](const std::shared_ptr<PendingSend>& aSend) {
    if (aSend->ticket != aTicket) {
      return false;
    }
    EndSend(*aSend, std::nullopt);
    return true;
  });
}

void EndAllSends(PendingSends& aSends) {
  for (const std::shared_ptr<PendingSend>& send : aSends) {
    EndSend(*send, std::nullopt);
  }
  aSends.clear();
}

} // namespace

struct WorkerTicket::Body {
  /// Atomic because one ticket may be used with more than one queue, each with its own mutex.
  std::atomic<bool> isCancelled = false;
};

WorkerTicket::WorkerTicket() : mBody(std::make_shared<Body>()) {}

WorkerTicket::~WorkerTicket() = default;

struct MessageQueue::State {
  /// Guards everything below; never held while a handler runs or a sender waits.
  mutable std::mutex mutex;
  bool isOpen = false;
  std::uint64_t generation = 0;
  std::thread::id takingThread;
  PendingSends waitingSends;
  PendingSends runningSends;
  PostedMessages posts;
  /// Readable while messages wait. Without a descriptor, if the system gives none, nobody is woken but messages can
  /// still be taken.
  krbase::WakeEvent wake;
  bool isSignalled = false;

  bool IsEmpty() const { return waitingSends.empty() && posts.IsEmpty(); }
  void UpdateWake();
  void DropAll();
};

void MessageQueue::State::UpdateWake() {
  if (isSignalled == !IsEmpty()) {
    return;
  }
  isSignalled = !isSignalled;
  if (isSignalled) {
    wake.Signal();
  } else {
    wake.Clear();
  }
}

void MessageQueue::State::DropAll() {
  posts.Clear();
  EndAllSends(waitingSends);
  EndAllSends(runningSends);
  UpdateWake();
}

MessageQueue::MessageQueue() : mState(std::make_shared<State>()) {}

MessageQueue::~MessageQueue() {
  Close();
}

void MessageQueue::Open() {
  const std::lock_guard lock(mState->mutex);
  // What was meant for an opening that nobody closed is not for the new one.
  mState->DropAll();
  mState->isOpen = true;
  mState->takingThread = std::this_thread::get_id();
  ++mState->generation;
}

void MessageQueue::Close() {
  const std::lock_guard lock(mState->mutex);
  if (!mState->isOpen) {
    return;
  }
  mState->isOpen = false;
  ++mState->generation;
  mState->DropAll();
}

bool MessageQueue::IsOpen() const {
  const std::lock_guard lock(mState->mutex);
  return mState->isOpen;
}

std::uint64_t MessageQueue::GetGeneration() const {
  const std::lock_guard lock(mState->mutex);
  return mState->generation;
}

bool MessageQueue::Post(const Message& aMessage) {
  const std::lock_guard lock(mState->mutex);
  if (!mState->isOpen) {
    return false;
  }
  mState->posts.Append(aMessage);
  mState->UpdateWake();
  return true;
}

bool MessageQueue::PostOnce(const Message& aMessage) {
  const std::lock_guard lock(mState->mutex);
  if (!mState->isOpen) {
    return false;
  }
  if (!mState->posts.Contains(aMessage)) {
    mState->posts.Append(aMessage);
    mState->UpdateWake();
  }
  return true;
}

std::optional<std::int64_t> MessageQueue::Send(const std::shared_ptr<WorkerTicket>& aTicket, const Message& aMessage) {
  // The sender's own reference: the queue may go while it waits.
  const std::shared_ptr<State> state = mState;
  const auto send = std::make_shared<PendingSend>();
  send->message = aMessage;
  send->ticket = aTicket;
  std::unique_lock lock(state->mutex);
  if (!state->isOpen || state->takingThread == std::this_thread::get_id()) {
    return std::nullopt;
  }
  if (aTicket && aTicket->mBody->isCancelled) {
    return std::nullopt;
  }
  state->waitingSends.push_back(send);
  state->UpdateWake();
  send->over.wait(lock, [&send] { return send->isOver; });
  return send->answer;
}

void MessageQueue::CancelSends(const std::shared_ptr<WorkerTicket>& aTicket) {
  if (!aTicket) {
    return;
  }
  const std::lock_guard lock(mState->mutex);
  aTicket->mBody->isCancelled = true;
  EndSendsOf(mState->waitingSends, aTicket);
  EndSendsOf(mState->runningSends, aTicket);
  mState->UpdateWake();
}

struct MessageQueue::Taken::Body {
  Message message;
  std::int64_t answer = 0;
  std::shared_ptr<State> state;
  std::shared_ptr<PendingSend> send; ///< Null for a posted message.
};

MessageQueue::Taken::Taken(std::unique_ptr<Body> aBody) : mBody(std::move(aBody)) {}

MessageQueue::Taken::Taken(Taken&&) noexcept = default;

MessageQueue::Taken::~Taken() {
  if (!mBody || !mBody->send) {
    return;
  }
  const std::lock_guard lock(mBody->state->mutex);
  if (!mBody->send->isOver) {
    std::erase(mBody->state->runningSends, mBody->send);
    EndSend(*mBody->send, mBody->answer);
  }
}

const Message& MessageQueue::Taken::Get() const {
  return mBody->message;
}

void MessageQueue::Taken::Answer(std::int64_t aValue) {
  mBody->answer = aValue;
}

std::optional<MessageQueue::Taken> MessageQueue::Take() {
  auto body = std::make_unique<Taken::Body>();
  const std::lock_guard lock(mState->mutex);
  if (mState->IsEmpty()) {
    return std::nullopt;
  }
  if (!mState->waitingSends.empty()) {
    body->send = mState->waitingSends.front();
    mState->waitingSends.pop_front();
    mState->runningSends.push_back(body->send);
    body->message = body->send->message;
  } else {
    body->message = mState->posts.TakeFirst();
  }
  body->state = mState;
  mState->UpdateWake();
  return Taken(std::move(body));
}

bool MessageQueue::IsEmpty() const {
  const std::lock_guard lock(mState->mutex);
  return mState->IsEmpty();
}

int MessageQueue::GetWakeDescriptor() const {
  return mState->wake.GetDescriptor();
}

} // namespace krgui
