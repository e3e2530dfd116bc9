#pragma once
// What the USB connection of a device is, and how its frames are transferred, as features. The transfers themselves are
// Aravis' business.

#include "aravis/istreamdevice.h"
#include "aravis/streamcounters.h"
#include "krsystem/hostfeature.h"
#include "usb3vision/usbtree.h"

#include <atomic>
#include <cstddef>

namespace krtransport {

/// How the frames of a device are transferred, and what came by it.
///
/// Thread: any. Ownership: outlives the features that it lists.
class UsbTransferSettings {
public:
  UsbTransferSettings();

  /// The features, of the stream that aStream lets be used while there is one.
  krsystem::HostFeatures List(IStreamUse& aStream);
  /// Whether the transfers of the next stream run beside each other.
  bool IsAsynchronous() const { return mIsAsynchronous; }
  /// Keeps the counters of a stream that is about to end.
  void OnStreamEnding(ArvStream& aStream) { mCounters.Keep(aStream); }

private:
  std::atomic<bool> mIsAsynchronous = false;
  StreamCounters mCounters;
};

/// The features of the connection. aMaxRegisterBytes is the longest access of the control channel.
krsystem::HostFeatures ListUsbLinkFeatures(const UsbDevice& aDevice, std::size_t aMaxRegisterBytes);

} // namespace krtransport
