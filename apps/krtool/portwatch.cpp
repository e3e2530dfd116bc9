#include "portwatch.h"

namespace krtool {

KrResult PortWatch::Read(std::uint64_t aAddress, void* aData, std::size_t aLength, std::uint32_t aTimeoutMs,
                         const std::stop_token& aCancel) {
  return Note(mPort.Read(aAddress, aData, aLength, aTimeoutMs, aCancel));
}

KrResult PortWatch::Write(std::uint64_t aAddress, const void* aData, std::size_t aLength, std::uint32_t aTimeoutMs,
                          const std::stop_token& aCancel) {
  return Note(mPort.Write(aAddress, aData, aLength, aTimeoutMs, aCancel));
}

KrResult PortWatch::GetLoss() const {
  const std::lock_guard lock(mMutex);
  return mLoss;
}

KrResult PortWatch::Note(KrResult aResult) {
  if (IsLoss(aResult)) {
    const std::lock_guard lock(mMutex);
    if (mLoss.IsOK())
      mLoss = aResult;
  }
  return aResult;
}

bool IsLoss(const KrResult& aResult) {
  return aResult == KrResult::Code::TimeLimitExceeded || aResult == KrResult::Code::ConnectionLost ||
         aResult == KrResult::Code::Aborted;
}

} // namespace krtool
