#include "aravis/devicewatch.h"

#include <utility>

namespace krtransport {

void DeviceWatch::Begin(std::function<void(const std::stop_token&)> aWatch) {
  mThread = std::jthread([watch = std::move(aWatch)](const std::stop_token& aStop) { watch(aStop); });
}

void DeviceWatch::Stop() {
  mThread.request_stop();
  const std::lock_guard lock(mStopMutex);
  if (mThread.joinable())
    mThread.join();
}

void DeviceWatch::Disconnect() {
  // In this order: a watch that finds itself disconnected knows that it is being ended, and tells nothing.
  mThread.request_stop();
  mIsConnected = false;
  Stop();
  mEvents.Forget();
}

void DeviceWatch::ReportSilence() {
  const std::lock_guard lock(mRequestMutex);
  mIsSilent = true;
  ++mSilenceReports;
  mIsLookWanted = true;
  mRequest.notify_all();
}

std::uint64_t DeviceWatch::CountSilences() {
  const std::lock_guard lock(mRequestMutex);
  return mSilenceReports;
}

void DeviceWatch::ForgetSilence(std::uint64_t aReportsBefore) {
  const std::lock_guard lock(mRequestMutex);
  if (mSilenceReports == aReportsBefore)
    mIsSilent = false;
}

void DeviceWatch::Lose(const KrResult& aReason) {
  if (!mIsConnected.exchange(false))
    return;
  mOnLost(aReason);
  mEvents.ReportLost(aReason);
}

void DeviceWatch::PauseUntil(std::chrono::steady_clock::time_point aMoment, const std::stop_token& aStop) {
  std::unique_lock lock(mRequestMutex);
  mRequest.wait_until(lock, aStop, aMoment, [this] { return mIsLookWanted; });
  mIsLookWanted = false;
}

} // namespace krtransport
