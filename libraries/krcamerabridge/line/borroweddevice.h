#pragma once
// The device of a bridge, which may end while the bridge lives. What it is used for is left to the user.

#include "krbase/krresult.h"
#include "krdevice/krdevice.h"
#include "krdevice/krdevicelifetime.h"

#include <memory>
#include <utility>

namespace krcamerabridge {

/// Thread: any. Ownership: borrows the device, and touches it only while it is there.
class BorrowedDevice {
public:
  explicit BorrowedDevice(KrDevice* aDevice)
      : mDevice(aDevice), mLifetime(aDevice ? aDevice->GetLifetime() : nullptr) {}

  /// What aOperation, which gets the device as a KrDevice&, gives; the device stays until then. InvalidInput without a
  /// device, ConnectionLost for one that has been closed.
  template <typename Operation>
  KrResult Use(Operation&& aOperation) const {
    if (!mDevice)
      return {KrResult::Code::InvalidInput, "The camera bridge has no device."};
    const KrDeviceLifetime::Use use(*mLifetime);
    if (!use.IsGranted())
      return {KrResult::Code::ConnectionLost, "The device of the camera bridge has been closed."};
    return std::forward<Operation>(aOperation)(*mDevice);
  }

private:
  KrDevice* mDevice;
  std::shared_ptr<KrDeviceLifetime> mLifetime;
};

} // namespace krcamerabridge
