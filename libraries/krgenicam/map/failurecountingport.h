#pragma once
// A register port that knows of the failures of the one behind it: how often it failed for a reason that may pass, as
// what was found meanwhile is not the last word, and how it failed last. What that one throws is a failure, too.

#include "krgenicam/ikrregisterport.h"
#include "portaccess.h"

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <utility>

namespace krgenicam {

/// Thread: under the map's lock. Ownership: borrows the port behind it.
class FailureCountingPort final : public IKrRegisterPort {
public:
  explicit FailureCountingPort(IKrRegisterPort& aPort) : mPort(aPort) {}

  std::uint64_t GetFailuresCount() const { return mFailuresCount; }
  /// The last failure, for whatever reason, since this was asked before; OK where there was none.
  KrResult TakeLastFailure() { return std::exchange(mLastFailure, {}); }

  KrResult Read(std::uint64_t aAddress, void* aData, std::size_t aLength, std::uint32_t aTimeoutMs,
                const std::stop_token& aCancel = {}) override {
    return Count(CallPort([&] { return mPort.Read(aAddress, aData, aLength, aTimeoutMs, aCancel); }));
  }
  KrResult Write(std::uint64_t aAddress, const void* aData, std::size_t aLength, std::uint32_t aTimeoutMs,
                 const std::stop_token& aCancel = {}) override {
    return Count(CallPort([&] { return mPort.Write(aAddress, aData, aLength, aTimeoutMs, aCancel); }));
  }

private:
  KrResult Count(KrResult aResult) {
    constexpr KrResult::Code kPassing[] = {KrResult::Code::TimeLimitExceeded, KrResult::Code::ConnectionLost,
                                           KrResult::Code::Busy, KrResult::Code::Aborted};
    mFailuresCount += std::ranges::find(kPassing, aResult.GetCode()) == std::end(kPassing) ? 0 : 1;
    if (!aResult.IsOK())
      mLastFailure = aResult;
    return aResult;
  }

  IKrRegisterPort& mPort;
  std::uint64_t mFailuresCount = 0;
  KrResult mLastFailure;
};

} // namespace krgenicam
