#include "serial/sendqueue.h"

#include <algorithm>
#include <utility>

namespace krgui {

namespace {

std::size_t Weigh(const std::vector<std::uint8_t>& aMessage) {
  return std::max<std::size_t>(aMessage.size(), 1);
}

} // namespace

bool SendQueue::Reserve(std::size_t aWeight) {
  const std::scoped_lock lock(mMutex);
  if (aWeight > mLimit - mWaiting) {
    mHasRefused = mWaiting > 0;
    return false;
  }
  mWaiting += aWeight;
  return true;
}

bool SendQueue::Put(std::vector<std::uint8_t> aMessage, const std::function<void()>& aBefore) {
  if (!Reserve(Weigh(aMessage)))
    return false;
  if (aBefore)
    aBefore();
  const std::scoped_lock lock(mMutex);
  ++mPut;
  mMessages.push_back(std::move(aMessage));
  mChanged.notify_all();
  return true;
}

void SendQueue::Run(ITerminalLine& aLine, const std::stop_token& aStop) {
  std::unique_lock lock(mMutex);
  while (mChanged.wait(lock, aStop, [this] { return !mMessages.empty(); }) && !aStop.stop_requested()) {
    // A reference into a deque outlives what is added behind.
    const std::vector<std::uint8_t>& message = mMessages.front();
    mWriteBegin = std::chrono::steady_clock::now();
    lock.unlock();
    std::uint32_t written = 0;
    // Whether the line took it is not asked, as for all that the user sends.
    static_cast<void>(aLine.Write(message.data(), static_cast<std::uint32_t>(message.size()), written, aStop));
    lock.lock();
    mWriteBegin.reset();
    mWaiting -= Weigh(message);
    ++mWritten;
    mMessages.pop_front();
    mChanged.notify_all();
    const bool takesAgain = mWaiting == 0 && std::exchange(mHasRefused, false);
    if (takesAgain && mOnTakesAgain) {
      lock.unlock();
      mOnTakesAgain();
      lock.lock();
    }
  }
}

bool SendQueue::IsEmpty() const {
  const std::scoped_lock lock(mMutex);
  return mWaiting == 0;
}

std::uint64_t SendQueue::CountPut() const {
  const std::scoped_lock lock(mMutex);
  return mPut;
}

void SendQueue::AwaitWritten(std::uint64_t aCount, const std::stop_token& aStop) {
  std::unique_lock lock(mMutex);
  mChanged.wait(lock, aStop, [this, aCount] { return mWritten >= aCount; });
}

void SendQueue::AwaitEmpty(std::chrono::milliseconds aLimit) {
  std::unique_lock lock(mMutex);
  const auto begin = mWriteBegin.value_or(std::chrono::steady_clock::now());
  mChanged.wait_until(lock, begin + aLimit, [this] { return mMessages.empty(); });
}

} // namespace krgui
