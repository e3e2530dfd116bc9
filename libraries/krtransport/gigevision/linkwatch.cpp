#include "gigevision/linkwatch.h"

#include "krsystem/ipv4address.h"

#include <chrono>
#include <utility>

namespace krtransport {
namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;

// As long as a silent device is asked, which thus is asked without pause.
constexpr milliseconds kProbePeriod{500};
constexpr milliseconds kReturnPeriod{1000};
constexpr int kSilentTriesUntilLost = 6;

} // namespace

LinkWatch::LinkWatch(const LinkTarget& aTarget, GvcpClient aClient, std::function<bool()> aHoldsControl,
                     std::function<void(const KrResult&)> aOnLost)
    : mTarget(aTarget), mHoldsControl(std::move(aHoldsControl)), mOnLost(std::move(aOnLost)),
      mClient(std::move(aClient)), mThread([this](const std::stop_token& aStop) { Watch(aStop); }) {}

void LinkWatch::Stop() {
  mThread.request_stop();
  const std::lock_guard lock(mStopMutex);
  if (mThread.joinable())
    mThread.join();
}

void LinkWatch::Disconnect() {
  // In this order: a watch that finds itself disconnected knows that it is being ended, and tells nothing.
  mThread.request_stop();
  mIsConnected = false;
  Stop();
  mEvents.Forget();
}

void LinkWatch::ReportSilence() {
  const std::lock_guard lock(mRequestMutex);
  mIsSilent = true;
  ++mSilenceReports;
  mIsProbeWanted = true;
  mRequest.notify_all();
}

void LinkWatch::Watch(const std::stop_token& aStop) {
  while (!aStop.stop_requested()) {
    const auto next = steady_clock::now() + (mIsConnected ? kProbePeriod : kReturnPeriod);
    std::uint64_t reportsBefore = 0;
    {
      const std::lock_guard lock(mRequestMutex);
      reportsBefore = mSilenceReports;
    }
    const ProbeFinding finding = ProbeDevice(mClient, aStop);
    if (finding != ProbeFinding::Silent && finding != ProbeFinding::Cancelled)
      ForgetSilence(reportsBefore);
    Judge(finding, aStop);
    PauseUntil(next, aStop);
  }
}

// An answer says nothing of a silence that was reported after the asking began.
void LinkWatch::ForgetSilence(std::uint64_t aReportsBefore) {
  const std::lock_guard lock(mRequestMutex);
  if (mSilenceReports == aReportsBefore)
    mIsSilent = false;
}

void LinkWatch::PauseUntil(steady_clock::time_point aMoment, const std::stop_token& aStop) {
  std::unique_lock lock(mRequestMutex);
  mRequest.wait_until(lock, aStop, aMoment, [this] { return mIsProbeWanted; });
  mIsProbeWanted = false;
}

void LinkWatch::Judge(ProbeFinding aFinding, const std::stop_token& aStop) {
  if (aFinding == ProbeFinding::Cancelled)
    return;
  if (aFinding != ProbeFinding::Silent)
    mSilentTries = 0;
  if (!mIsConnected) {
    if (aStop.stop_requested())
      return;
    if (aFinding != ProbeFinding::Silent && !std::exchange(mIsBack, true))
      mEvents.ReportBack();
    return;
  }
  if (!mHoldsControl())
    Lose("Its heartbeat was lost");
  else if (aFinding == ProbeFinding::Uncontrolled && mTarget.access != krsystem::DeviceAccess::Monitor)
    Lose("It answers, but is not controlled any more: it was restarted, or its control was taken away");
  else if (aFinding == ProbeFinding::Silent && ++mSilentTries >= kSilentTriesUntilLost)
    Lose("It does not answer any more; check its cable and power");
}

void LinkWatch::Lose(const char* aWhy) {
  if (!mIsConnected.exchange(false))
    return;
  const KrResult reason(KrResult::Code::ConnectionLost, "The connection to the device at " +
                                                            krsystem::FormatIPv4(mTarget.deviceAddress) +
                                                            " was lost. " + aWhy + ".");
  mOnLost(reason);
  mEvents.ReportLost(reason);
}

} // namespace krtransport
