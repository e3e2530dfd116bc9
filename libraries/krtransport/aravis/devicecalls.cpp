#include "aravis/devicecalls.h"

#include <atomic>
#include <memory>
#include <utility>

namespace krtransport {

KrResult DeviceCalls::Run(IoThread::Job aJob, std::uint32_t aTimeoutMs, const std::stop_token& aCancel) {
  if (mSilence.IsSilent())
    return {KrResult::Code::TimeLimitExceeded,
            mIoThread.GetDeviceName() +
                " did not answer a moment ago; it is asked again as soon as it does. Check its cable and its power."};
  // A call that waited behind another one in vain says nothing of the device. Each side tells of itself before it looks
  // at the other: a job that is not seen to have begun asks nothing.
  const auto hasBegun = std::make_shared<std::atomic<bool>>(false);
  KrResult result = mIoThread.Run(
      [hasBegun, job = std::move(aJob)](const std::atomic<bool>& aIsAbandoned) {
        *hasBegun = true;
        return aIsAbandoned ? KrResult(KrResult::Code::Aborted) : job(aIsAbandoned);
      },
      aTimeoutMs, aCancel);
  if (result == KrResult::Code::TimeLimitExceeded && *hasBegun)
    mSilence.ReportSilence();
  return result;
}

} // namespace krtransport
