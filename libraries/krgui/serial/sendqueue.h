#pragma once
// What the user has sent and the line has not taken yet, written in order by a thread of its own. What becomes of a
// message that could not be written is nobody's business.

#include "logic/serial/iterminalline.h"

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <mutex>
#include <optional>
#include <stop_token>
#include <utility>
#include <vector>

namespace krgui {

/// Thread: any; Run on the writer's own. Ownership: outlives the thread that runs it.
class SendQueue {
public:
  /// The other thing is called on the writer's thread when, after a message was refused, nothing waits any more.
  explicit SendQueue(std::size_t aLimit, std::function<void()> aOnTakesAgain = {})
      : mLimit(aLimit), mOnTakesAgain(std::move(aOnTakesAgain)) {}

  /// Adds a message; false when more than the limit's bytes would wait. An empty message counts as one byte. What is to
  /// be done before the message can be written is called once it is known to fit.
  bool Put(std::vector<std::uint8_t> aMessage, const std::function<void()>& aBefore = {});
  /// Writes messages, each in one call of Write, until aStop is stopped.
  void Run(ITerminalLine& aLine, const std::stop_token& aStop);

  /// Whether nothing waits, nor is being written.
  bool IsEmpty() const;
  /// Counts the messages put since the beginning.
  std::uint64_t CountPut() const;
  /// Waits until as many messages have been written, or aStop is stopped.
  void AwaitWritten(std::uint64_t aCount, const std::stop_token& aStop);
  /// Waits until nothing waits to be written, aLimit at most, from the begin of the write that runs if one does: a line
  /// that has taken nothing for so long is waited for no longer.
  void AwaitEmpty(std::chrono::milliseconds aLimit);

private:
  bool Reserve(std::size_t aWeight);

  const std::size_t mLimit;
  const std::function<void()> mOnTakesAgain;
  mutable std::mutex mMutex; // Guards the members from here on.
  std::condition_variable_any mChanged;
  std::deque<std::vector<std::uint8_t>> mMessages;                  ///< The one that is being written included.
  std::size_t mWaiting = 0;                                         ///< Bytes of the messages.
  bool mHasRefused = false;                                         ///< Since something waits.
  std::optional<std::chrono::steady_clock::time_point> mWriteBegin; ///< Of the write that runs.
  std::uint64_t mPut = 0;
  std::uint64_t mWritten = 0;
};

} // namespace krgui
