#pragma once
// Watches whether an open device is still plugged in and answers, and tells of loss and return. What loss means for
// accesses and streams is decided by the link.

#include "aravis/isilence.h"
#include "krbase/krresult.h"
#include "krsystem/linkevents.h"
#include "usb3vision/usbtree.h"

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <functional>
#include <mutex>
#include <stop_token>
#include <thread>

namespace krtransport {

/// Looks twice a second whether the kernel still lists the device at its port and address: a device that was pulled, or
/// restarted, has another address or none. A device that is plugged in and keeps silent is not lost; it is asked again
/// until it answers.
///
/// Thread: any, but for destruction, which waits for a sink's call that runs.
/// Ownership: borrows the sink.
class UsbWatch final : public ISilence {
public:
  /// What the watch looks at and how.
  struct Subject {
    UsbRoots roots;
    UsbDevice device; ///< As it was when it was opened.
    std::chrono::milliseconds period{500};
  };

  /// aProbe asks the device for something that it always gives; it returns within a limit of its own. aOnLost is called
  /// once, before the sink hears of the loss. Both are called on the watch's thread, until Stop.
  UsbWatch(Subject aSubject, std::function<KrResult()> aProbe, std::function<void(const KrResult&)> aOnLost);
  ~UsbWatch() override { Stop(); }
  UsbWatch(const UsbWatch&) = delete;
  UsbWatch& operator=(const UsbWatch&) = delete;

  bool IsConnected() const { return mIsConnected; }
  bool IsSilent() const override { return mIsSilent && mIsConnected; }
  void ReportSilence() override;
  /// As IDeviceLink::SetSink.
  void SetSink(krsystem::IDeviceLinkSink* aSink) { mEvents.SetSink(aSink); }
  /// Ends the watch: afterwards no call of probe or loss runs or comes. Not from these calls.
  void Stop();
  /// Ends the watch and has the device count as lost, without word of it.
  void Disconnect();

private:
  void Watch(const std::stop_token& aStop);
  void LookForReturn(const std::stop_token& aStop);
  void AskAgain();
  std::uint64_t CountSilences();
  bool IsPluggedIn() const;
  void Lose();
  void Pause(const std::stop_token& aStop);

  const Subject mSubject;
  const std::function<KrResult()> mProbe;
  const std::function<void(const KrResult&)> mOnLost;

  std::atomic<bool> mIsConnected{true};
  std::atomic<bool> mIsSilent{false};

  // Guards the request to the watch's thread and the changes of mIsSilent.
  std::mutex mRequestMutex;
  std::condition_variable_any mRequest;
  bool mIsLookWanted = false;
  std::uint64_t mSilenceCount = 0; // How often silence was reported.

  krsystem::LinkEvents mEvents;
  // Guards the joining of the thread.
  std::mutex mStopMutex;
  std::jthread mThread;
};

} // namespace krtransport
