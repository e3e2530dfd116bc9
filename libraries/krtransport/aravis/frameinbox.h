#pragma once
// Frames on their way from the receiving thread to whoever waits for them, and the reason why none will come any more.
// What is in a frame is looked at by the taker.

#include "aravis/gobjectpointer.h"
#include "krbase/krresult.h"

#include <condition_variable>
#include <cstdint>
#include <deque>
#include <mutex>
#include <stop_token>

namespace krtransport {

/// Thread: any.
/// Ownership: owns the frames that nobody has taken.
class FrameInbox {
public:
  /// Empties the inbox, opens it and sets the count of bytes to 0.
  void Open();
  /// Drops what is there and gives every waiting and later Take this reason.
  void Close(const KrResult& aReason);

  /// Takes a finished frame in; a closed inbox drops it.
  void Put(GObjectPointer<ArvBuffer> aFrame);
  /// The oldest frame, waiting up to aTimeoutMs milliseconds. TimeLimitExceeded, Aborted when
  /// aCancel is stopped, or the reason of Close.
  KrResult Take(GObjectPointer<ArvBuffer>& aFrame, std::uint32_t aTimeoutMs, const std::stop_token& aCancel);
  /// Payload bytes of the whole frames that were put in since Open.
  std::uint64_t GetWholeBytes() const;

private:
  // Guards all members.
  mutable std::mutex mMutex;
  std::condition_variable_any mChanged;
  std::deque<GObjectPointer<ArvBuffer>> mFrames;
  KrResult mClosed{KrResult::Code::Aborted, "The stream is not started."};
  std::uint64_t mWholeBytes = 0;
};

} // namespace krtransport
