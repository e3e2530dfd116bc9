#include "countingport.h"

#include "krbase/krsteadytime.h"

#include <utility>

namespace krdevice {

CountingPort::CountingPort(IKrRegisterPort& aPort, Clock aClock)
    : mPort(aPort), mClock(aClock ? std::move(aClock) : KrGetSteadyNs) {}

KrResult CountingPort::Read(std::uint64_t aAddress, void* aData, std::size_t aLength, std::uint32_t aTimeoutMs,
                            const std::stop_token& aCancel) {
  ++mReads;
  const std::uint64_t begin = mClock();
  KrResult result = mPort.Read(aAddress, aData, aLength, aTimeoutMs, aCancel);
  Note(result, aLength, mClock() - begin);
  return result;
}

KrResult CountingPort::Write(std::uint64_t aAddress, const void* aData, std::size_t aLength, std::uint32_t aTimeoutMs,
                             const std::stop_token& aCancel) {
  ++mWrites;
  const std::uint64_t begin = mClock();
  KrResult result = mPort.Write(aAddress, aData, aLength, aTimeoutMs, aCancel);
  Note(result, aLength, mClock() - begin);
  return result;
}

void CountingPort::Note(const KrResult& aResult, std::size_t aLength, std::uint64_t aTookNs) {
  if (aResult == KrResult::Code::TimeLimitExceeded) {
    ++mTimeouts;
  } else if (!aResult.IsOK()) {
    mFailures += aResult == KrResult::Code::Aborted ? 0 : 1;
  } else {
    ++mSucceeded;
    mBytes += aLength;
    mSucceededNs += aTookNs;
    std::uint64_t longest = mLongestNs;
    while (longest < aTookNs && !mLongestNs.compare_exchange_weak(longest, aTookNs)) {
    }
  }
}

AccessCounts CountingPort::GetCounts() const {
  return {.reads = mReads,
          .writes = mWrites,
          .succeeded = mSucceeded,
          .bytes = mBytes,
          .timeouts = mTimeouts,
          .failures = mFailures,
          .longestNs = mLongestNs,
          .succeededNs = mSucceededNs};
}

} // namespace krdevice
