#include "gigevision/linkwatch.h"

#include "krsystem/ipv4address.h"

#include <chrono>
#include <cstdint>
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

LinkWatch::LinkWatch(const LinkTarget& aTarget, GvcpClient aClient, std::function<bool()> aHoldsControl, OnLost aOnLost)
    : DeviceWatch(std::move(aOnLost)), mTarget(aTarget), mHoldsControl(std::move(aHoldsControl)),
      mClient(std::move(aClient)) {
  Begin([this](const std::stop_token& aStop) { Watch(aStop); });
}

void LinkWatch::Watch(const std::stop_token& aStop) {
  while (!aStop.stop_requested()) {
    const auto next = steady_clock::now() + (IsConnected() ? kProbePeriod : kReturnPeriod);
    const std::uint64_t reportsBefore = CountSilences();
    const ProbeFinding finding = ProbeDevice(mClient, aStop);
    if (finding != ProbeFinding::Silent && finding != ProbeFinding::Cancelled)
      ForgetSilence(reportsBefore);
    Judge(finding, aStop);
    PauseUntil(next, aStop);
  }
}

void LinkWatch::Judge(ProbeFinding aFinding, const std::stop_token& aStop) {
  if (aFinding == ProbeFinding::Cancelled)
    return;
  if (aFinding != ProbeFinding::Silent)
    mSilentTries = 0;
  if (!IsConnected()) {
    if (aStop.stop_requested())
      return;
    if (aFinding != ProbeFinding::Silent && !std::exchange(mIsBack, true))
      ReportBack();
    return;
  }
  if (!mHoldsControl())
    LoseBecause("Its heartbeat was lost");
  else if (aFinding == ProbeFinding::Uncontrolled && mTarget.access != krsystem::DeviceAccess::Monitor)
    LoseBecause("It answers, but is not controlled any more: it was restarted, or its control was taken away");
  else if (aFinding == ProbeFinding::Silent && ++mSilentTries >= kSilentTriesUntilLost)
    LoseBecause("It does not answer any more; check its cable and power");
}

void LinkWatch::LoseBecause(const char* aWhy) {
  Lose({KrResult::Code::ConnectionLost,
        "The connection to the device at " + krsystem::FormatIPv4(mTarget.deviceAddress) + " was lost. " + aWhy + "."});
}

} // namespace krtransport
