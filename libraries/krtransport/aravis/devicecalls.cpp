#include "aravis/devicecalls.h"

#include <utility>

namespace krtransport {

KrResult DeviceCalls::Run(IoThread::Job aJob, std::uint32_t aTimeoutMs, const std::stop_token& aCancel) {
  if (mSilence.IsSilent())
    return {KrResult::Code::TimeLimitExceeded,
            "The device did not answer a moment ago; it is asked again as soon as it does."};
  KrResult result = mIoThread.Run(std::move(aJob), aTimeoutMs, aCancel);
  if (result == KrResult::Code::TimeLimitExceeded)
    mSilence.ReportSilence();
  return result;
}

} // namespace krtransport
