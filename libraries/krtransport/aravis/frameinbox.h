#pragma once
// Filled buffers on their way from the receiving thread to whoever waits for them, counted, and the reason why none
// will come any more.

#include "aravis/framedescription.h"
#include "krbase/krresult.h"
#include "krbuffer/krbuffer.h"

#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <mutex>
#include <stop_token>

namespace krtransport {

/// What came in since Open.
struct FrameCounts {
  std::uint64_t whole = 0;
  std::uint64_t cutShort = 0; ///< A part is missing, or did not fit into the buffer.
  std::uint64_t bytes = 0;    ///< Of the whole ones.
};

/// Thread: any. Ownership: borrows the buffers.
class FrameInbox {
public:
  /// Empties the inbox, opens it and sets the counts to 0.
  void Open();
  /// Drops what is there and gives every waiting and later Take this reason.
  void Close(const KrResult& aReason);

  /// Marks a buffer as empty that the receiving thread may fill from now on.
  void Lend(KrBuffer& aBuffer);
  /// Describes a buffer that was filled, takes it in and counts it by its status; one that was given up before its end
  /// counts as neither. A closed inbox drops it.
  void Put(KrBuffer& aBuffer, const FrameDescription& aFrame);
  /// The oldest buffer, waiting up to aTimeoutMs milliseconds. TimeLimitExceeded, Aborted when aCancel is stopped, or
  /// the reason of Close.
  KrResult Take(KrBuffer*& aBuffer, std::uint32_t aTimeoutMs, const std::stop_token& aCancel);
  FrameCounts GetCounts() const;
  /// How many buffers wait to be taken.
  std::size_t CountFilled() const;

private:
  void Count(const KrBuffer& aBuffer);

  // Guards all members, and what stands in buffers beside their bytes on its way from one thread to the other.
  mutable std::mutex mMutex;
  std::condition_variable_any mChanged;
  std::deque<KrBuffer*> mBuffers;
  KrResult mClosed{KrResult::Code::Aborted, "The stream is not started."};
  FrameCounts mCounts;
};

} // namespace krtransport
