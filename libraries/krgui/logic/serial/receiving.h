#pragma once
// The receiving of bytes, as the thread of its own that the terminal has for it while a port is open.

#include "krbase/rest.h"
#include "logic/frame/messagequeue.h"
#include "logic/serial/iterminalline.h"
#include "logic/serial/loopbackcheck.h"
#include "logic/serial/transcriptencoder.h"

#include <chrono>
#include <functional>
#include <memory>
#include <stop_token>

namespace krgui {

/// Reads until aStop is stopped, renders what comes, matches it with what is expected back while the device's loopback
/// is on, and asks for a flush of what is shown.
///
/// Thread: the receiver's own. A read that waits ends by the line's Cancel.
class Receiving {
public:
  using Clock = std::function<std::chrono::milliseconds()>;
  /// Waits for a time; a stop ends it.
  using Pause = std::function<void(std::chrono::milliseconds, const std::stop_token&)>;
  static constexpr std::uint32_t kReadSize = 64;
  static constexpr std::uint32_t kReadTimeoutMs = 250;
  static constexpr std::chrono::milliseconds kFailurePause{250};
  static constexpr std::chrono::milliseconds kFlushPeriod{250};
  static constexpr std::uint32_t kFlushBytes = 64;

  Receiving(ITerminalLine& aLine, TranscriptEncoder& aEncoder, LoopbackCheck& aCheck,
            std::function<bool()> aIsLoopbackOn, std::shared_ptr<MessageQueue> aQueue, Clock aClock,
            Pause aPause = krbase::Rest);

  void Run(const std::stop_token& aStop);

private:
  void Receive(const std::stop_token& aStop);
  void RequestFlush();

  ITerminalLine& mLine;
  TranscriptEncoder& mEncoder;
  LoopbackCheck& mCheck;
  const std::function<bool()> mIsLoopbackOn;
  const std::shared_ptr<MessageQueue> mQueue;
  const Clock mClock;
  const Pause mPause;
  std::chrono::milliseconds mRequestTime{}; ///< When a flush was asked for last.
};

} // namespace krgui
