#pragma once
// A device's registers as everybody reaches them, with a count of what is asked and how it went. Reading and writing is
// left to the link's own port.

#include "krgenicam/ikrregisterport.h"

#include <atomic>
#include <cstdint>
#include <functional>

namespace krdevice {

/// What was asked of a device's registers since it was opened.
struct AccessCounts {
  std::uint64_t reads = 0;
  std::uint64_t writes = 0;
  std::uint64_t succeeded = 0;
  std::uint64_t bytes = 0;       ///< Of the accesses that succeeded.
  std::uint64_t timeouts = 0;    ///< Accesses without an answer in time.
  std::uint64_t failures = 0;    ///< Those that failed for another reason, but for cancelled ones.
  std::uint64_t longestNs = 0;   ///< The longest access that succeeded.
  std::uint64_t succeededNs = 0; ///< All that succeeded, together.
};

/// Thread: any. Ownership: borrows the port.
class CountingPort final : public IKrRegisterPort {
public:
  /// Gives nanoseconds from any beginning.
  using Clock = std::function<std::uint64_t()>;

  /// A steady clock where none is given.
  explicit CountingPort(IKrRegisterPort& aPort, Clock aClock = {});

  KrResult Read(std::uint64_t aAddress, void* aData, std::size_t aLength, std::uint32_t aTimeoutMs,
                const std::stop_token& aCancel) override;
  KrResult Write(std::uint64_t aAddress, const void* aData, std::size_t aLength, std::uint32_t aTimeoutMs,
                 const std::stop_token& aCancel) override;

  /// Each number is right by itself, while accesses go on.
  AccessCounts GetCounts() const;

private:
  void Note(const KrResult& aResult, std::size_t aLength, std::uint64_t aTookNs);

  IKrRegisterPort& mPort;
  const Clock mClock;
  std::atomic<std::uint64_t> mReads{0};
  std::atomic<std::uint64_t> mWrites{0};
  std::atomic<std::uint64_t> mSucceeded{0};
  std::atomic<std::uint64_t> mBytes{0};
  std::atomic<std::uint64_t> mTimeouts{0};
  std::atomic<std::uint64_t> mFailures{0};
  std::atomic<std::uint64_t> mLongestNs{0};
  std::atomic<std::uint64_t> mSucceededNs{0};
};

} // namespace krdevice
