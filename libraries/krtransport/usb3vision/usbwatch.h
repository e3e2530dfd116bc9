#pragma once
// Watches whether an open device is still plugged in and answers, and tells of loss and return. What loss means for
// accesses and streams is decided by the link.

#include "aravis/devicewatch.h"
#include "usb3vision/usbtree.h"

#include <chrono>
#include <functional>
#include <stop_token>

namespace krtransport {

/// Looks twice a second whether the kernel still lists the device at its port and address: a device that was pulled, or
/// restarted, has another address or none. A device that is plugged in and keeps silent is not lost; it is asked again
/// until it answers.
///
/// Thread, ownership: as DeviceWatch.
class UsbWatch final : public DeviceWatch {
public:
  /// What the watch looks at and how.
  struct Subject {
    UsbRoots roots;
    UsbDevice device; ///< As it was when it was opened.
    std::chrono::milliseconds period{500};
  };

  /// aProbe asks the device for something that it always gives; it returns within a limit of its own. aOnLost is called
  /// once, before the sink hears of the loss. Both are called on the watch's thread, until Stop.
  UsbWatch(Subject aSubject, std::function<KrResult()> aProbe, OnLost aOnLost);
  ~UsbWatch() override { Stop(); }

private:
  void Watch(const std::stop_token& aStop);
  void LookForReturn(const std::stop_token& aStop);
  void AskAgain();
  bool IsPluggedIn() const;
  void LoseUnplugged();
  void Pause(const std::stop_token& aStop);

  const Subject mSubject;
  const std::function<KrResult()> mProbe;
};

} // namespace krtransport
