#pragma once
// Watches whether an open device still answers, faster than its own heartbeat would tell, and tells of loss and return.
// What loss means for accesses and streams is decided by the link.

#include "aravis/isilence.h"
#include "gigevision/deviceprobe.h"
#include "gigevision/gvcpclient.h"
#include "gigevision/linktarget.h"
#include "krbase/krresult.h"
#include "krsystem/linkevents.h"

#include <atomic>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <stop_token>
#include <thread>

namespace krtransport {

/// Asks the device twice a second on a socket of its own. Six silent tries in a row, about three seconds, are its loss;
/// so is a device that answers and says that nobody controls it, as one does that was restarted. Tries are counted, not
/// time: a process that was stopped itself finds its device still there.
///
/// Thread: any, but for destruction, which waits for a sink's call that runs.
/// Ownership: borrows the sink.
class LinkWatch final : public ISilence {
public:
  /// aHoldsControl says whether the link's own heartbeat still goes; aOnLost is called once, before the sink hears of
  /// the loss. Both are called on the watch's thread, until Stop.
  LinkWatch(const LinkTarget& aTarget, GvcpClient aClient, std::function<bool()> aHoldsControl,
            std::function<void(const KrResult&)> aOnLost);
  ~LinkWatch() override { Stop(); }
  LinkWatch(const LinkWatch&) = delete;
  LinkWatch& operator=(const LinkWatch&) = delete;

  bool IsConnected() const { return mIsConnected; }
  bool IsSilent() const override { return mIsSilent && mIsConnected; }
  void ReportSilence() override;
  /// As IDeviceLink::SetSink.
  void SetSink(krsystem::IDeviceLinkSink* aSink) { mEvents.SetSink(aSink); }
  /// Ends the watch: afterwards neither of its two calls runs or comes. Not from these calls.
  void Stop();
  /// Ends the watch and has the device count as lost, without word of it.
  void Disconnect();

private:
  void Watch(const std::stop_token& aStop);
  void Judge(ProbeFinding aFinding, const std::stop_token& aStop);
  void ForgetSilence(std::uint64_t aReportsBefore);
  void Lose(const char* aWhy);
  void PauseUntil(std::chrono::steady_clock::time_point aMoment, const std::stop_token& aStop);

  const LinkTarget mTarget;
  const std::function<bool()> mHoldsControl;
  const std::function<void(const KrResult&)> mOnLost;
  // Used by the watch's thread alone.
  GvcpClient mClient;
  int mSilentTries = 0;
  bool mIsBack = false;

  std::atomic<bool> mIsConnected{true};
  std::atomic<bool> mIsSilent{false};

  // Guards the request to the watch's thread, and the silence together with how often it was reported.
  std::mutex mRequestMutex;
  std::condition_variable_any mRequest;
  bool mIsProbeWanted = false;
  std::uint64_t mSilenceReports = 0;

  krsystem::LinkEvents mEvents;
  // Guards the joining of the thread.
  std::mutex mStopMutex;
  std::jthread mThread;
};

} // namespace krtransport
