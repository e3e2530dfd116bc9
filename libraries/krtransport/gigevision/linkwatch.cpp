#include "gigevision/linkwatch.h"

#include "krsystem/ipv4address.h"

#include <chrono>
#include <utility>

namespace krtransport {
namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;

constexpr milliseconds kProbePeriod{500};
constexpr milliseconds kReturnPeriod{1000};
constexpr int kSilentTriesUntilLost = 6;
// Together as long as the period, so that a silent device is asked without pause.
constexpr GvcpPatience kRegisterPatience{milliseconds(300), 1};
constexpr GvcpPatience kDiscoveryPatience{milliseconds(200), 1};

} // namespace

LinkWatch::LinkWatch(const LinkTarget& aTarget, GvcpClient aClient, std::function<bool()> aHoldsControl,
                     std::function<void(const KrResult&)> aOnLost)
    : mTarget(aTarget), mHoldsControl(std::move(aHoldsControl)), mOnLost(std::move(aOnLost)),
      mClient(std::move(aClient)), mThread([this](const std::stop_token& aStop) { Watch(aStop); }) {}

void LinkWatch::Stop() {
  mThread.request_stop();
  if (mWatchThread.load() == std::this_thread::get_id())
    return;
  const std::lock_guard lock(mStopMutex);
  if (mThread.joinable())
    mThread.join();
}

void LinkWatch::Disconnect() {
  // In this order: a watch that finds itself disconnected knows that it is being ended, and tells nothing.
  mThread.request_stop();
  mIsConnected = false;
  Stop();
}

void LinkWatch::ReportSilence() {
  const std::lock_guard lock(mRequestMutex);
  mIsSilent = true;
  mIsProbeWanted = true;
  mRequest.notify_all();
}

void LinkWatch::SetSink(krsystem::IDeviceLinkSink* aSink) {
  std::unique_lock lock(mSinkMutex);
  mSink = aSink;
  if (mTellingThread != std::this_thread::get_id())
    mSinkIdle.wait(lock, [this] { return mTellingThread == std::thread::id(); });
}

void LinkWatch::Watch(const std::stop_token& aStop) {
  mWatchThread = std::this_thread::get_id();
  while (!aStop.stop_requested()) {
    const auto next = steady_clock::now() + (mIsConnected ? kProbePeriod : kReturnPeriod);
    Judge(Probe(aStop), aStop);
    PauseUntil(next, aStop);
  }
}

void LinkWatch::PauseUntil(steady_clock::time_point aMoment, const std::stop_token& aStop) {
  std::unique_lock lock(mRequestMutex);
  mRequest.wait_until(lock, aStop, aMoment, [this] { return mIsProbeWanted; });
  mIsProbeWanted = false;
}

LinkWatch::Finding LinkWatch::Probe(const std::stop_token& aStop) {
  std::uint32_t privilege = 0;
  const KrResult read = mClient.ReadRegister(kControlPrivilegeRegister, privilege, kRegisterPatience, aStop);
  if (read == KrResult::Code::Aborted)
    return Finding::Cancelled;
  if (read.IsOK()) {
    const bool isControlled = (privilege & (kControlBit | kExclusiveBit)) != 0;
    return isControlled || mTarget.access == krsystem::DeviceAccess::Monitor ? Finding::Answers : Finding::Uncontrolled;
  }
  if (read == KrResult::Code::ProtocolError)
    return Finding::Answers;
  // A device that is held exclusively may pass over what others read; discovery it has to answer.
  DiscoveryPayload payload;
  const KrResult discovered = mClient.Discover(payload, kDiscoveryPatience, aStop);
  if (discovered == KrResult::Code::Aborted)
    return Finding::Cancelled;
  const bool answers = discovered.IsOK() || discovered == KrResult::Code::ProtocolError;
  return answers ? Finding::Answers : Finding::Silent;
}

void LinkWatch::Judge(Finding aFinding, const std::stop_token& aStop) {
  if (aFinding == Finding::Cancelled)
    return;
  if (aFinding != Finding::Silent) {
    mSilentTries = 0;
    mIsSilent = false;
  }
  if (!mIsConnected) {
    if (aStop.stop_requested())
      return;
    if (aFinding != Finding::Silent && !std::exchange(mIsBack, true))
      Tell([](krsystem::IDeviceLinkSink& aSink) { aSink.OnLinkBack(); });
    return;
  }
  if (!mHoldsControl())
    Lose("Its heartbeat was lost");
  else if (aFinding == Finding::Uncontrolled)
    Lose("It answers, but is not controlled any more: it was restarted, or its control was taken away");
  else if (aFinding == Finding::Silent && ++mSilentTries >= kSilentTriesUntilLost)
    Lose("It does not answer any more; check its cable and power");
}

void LinkWatch::Lose(const char* aWhy) {
  if (!mIsConnected.exchange(false))
    return;
  const KrResult reason(KrResult::Code::ConnectionLost, "The connection to the device at " +
                                                            krsystem::FormatIPv4(mTarget.deviceAddress) +
                                                            " was lost. " + aWhy + ".");
  mOnLost(reason);
  Tell([&reason](krsystem::IDeviceLinkSink& aSink) { aSink.OnLinkLost(reason); });
}

void LinkWatch::Tell(const std::function<void(krsystem::IDeviceLinkSink&)>& aCall) {
  krsystem::IDeviceLinkSink* sink = nullptr;
  {
    const std::lock_guard lock(mSinkMutex);
    sink = mSink;
    if (sink == nullptr)
      return;
    mTellingThread = std::this_thread::get_id();
  }
  aCall(*sink);
  const std::lock_guard lock(mSinkMutex);
  mTellingThread = {};
  mSinkIdle.notify_all();
}

} // namespace krtransport
