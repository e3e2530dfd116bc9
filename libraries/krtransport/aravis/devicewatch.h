#pragma once
// What the watches of open devices share: the thread and its pauses, what is known of silence and loss, and the word of
// both. How a device is asked, and what counts as its loss, is left to each.

#include "aravis/isilence.h"
#include "krbase/krresult.h"
#include "krsystem/linkevents.h"

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <functional>
#include <mutex>
#include <stop_token>
#include <thread>
#include <utility>

namespace krtransport {

/// A watch that is derived from it begins at the end of its construction, and stops before anything of it is destroyed.
///
/// Thread: any, but for destruction, which waits for a sink's call that runs; what is protected, the watch's own.
/// Ownership: borrows the sink.
class DeviceWatch : public ISilence {
public:
  ~DeviceWatch() override { Stop(); }
  DeviceWatch(const DeviceWatch&) = delete;
  DeviceWatch& operator=(const DeviceWatch&) = delete;

  bool IsConnected() const { return mIsConnected; }
  bool IsSilent() const override { return mIsSilent && mIsConnected; }
  void ReportSilence() override;
  /// As IDeviceLink::SetSink.
  void SetSink(krsystem::IDeviceLinkSink* aSink) { mEvents.SetSink(aSink); }
  /// Ends the watch: afterwards nothing that it calls runs or comes. Not from these calls.
  void Stop();
  /// Ends the watch and has the device count as lost, without word of it.
  void Disconnect();

protected:
  using OnLost = std::function<void(const KrResult& aReason)>;

  /// aOnLost is called once, on the watch's thread, before the sink hears of the loss.
  explicit DeviceWatch(OnLost aOnLost) : mOnLost(std::move(aOnLost)) {}

  /// Runs this on the watch's thread; once.
  void Begin(std::function<void(const std::stop_token& aStop)> aWatch);
  /// How often silence was reported.
  std::uint64_t CountSilences();
  /// The device has answered what was asked when silence had been reported so often: that says nothing of a silence
  /// that was reported since.
  void ForgetSilence(std::uint64_t aReportsBefore);
  /// Nothing where it is lost already.
  void Lose(const KrResult& aReason);
  /// The device that was lost is back.
  void ReportBack() { mEvents.ReportBack(); }
  /// Returns sooner when silence is reported.
  void PauseUntil(std::chrono::steady_clock::time_point aMoment, const std::stop_token& aStop);

private:
  const OnLost mOnLost;
  std::atomic<bool> mIsConnected{true};
  std::atomic<bool> mIsSilent{false};

  // Guards the request to the watch's thread, and the silence together with how often it was reported.
  std::mutex mRequestMutex;
  std::condition_variable_any mRequest;
  bool mIsLookWanted = false;
  std::uint64_t mSilenceReports = 0;

  krsystem::LinkEvents mEvents;
  // Guards the joining of the thread.
  std::mutex mStopMutex;
  std::jthread mThread;
};

} // namespace krtransport
