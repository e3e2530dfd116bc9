#pragma once
// A register port that remembers whether the device behind it ever kept an answer to itself: what was read then is not
// the whole, though every single failure may have been told of as that of a feature.

#include "krgenicam/ikrregisterport.h"

#include <mutex>

namespace krtool {

/// Thread: any. Ownership: borrows the port behind it.
class PortWatch final : public IKrRegisterPort {
public:
  explicit PortWatch(IKrRegisterPort& aPort) : mPort(aPort) {}

  KrResult Read(std::uint64_t aAddress, void* aData, std::size_t aLength, std::uint32_t aTimeoutMs,
                const std::stop_token& aCancel = {}) override;
  KrResult Write(std::uint64_t aAddress, const void* aData, std::size_t aLength, std::uint32_t aTimeoutMs,
                 const std::stop_token& aCancel = {}) override;

  /// The first access that ended with TimeLimitExceeded, ConnectionLost or Aborted; OK where there was none.
  KrResult GetLoss() const;

private:
  KrResult Note(KrResult aResult);

  IKrRegisterPort& mPort;
  mutable std::mutex mMutex; // Guards mLoss.
  KrResult mLoss;
};

/// Whether a failure is one of the line to the device or of a cancellation, rather than the device's word on what was
/// asked.
bool IsLoss(const KrResult& aResult);

} // namespace krtool
