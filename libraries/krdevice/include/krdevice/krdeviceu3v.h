#pragma once
// A USB3 Vision device.

#include "krdevice/krdevice.h"

/// An open USB3 Vision device. Threads and ownership as KrDevice.
class KR_EXPORT KrDeviceU3V : public KrDevice {
public:
  /// A device on an open link, which it takes over.
  KrDeviceU3V(std::unique_ptr<krsystem::IDeviceLink> aLink, krsystem::DeviceFields aFields,
              KrDeviceAccess aAccess = KrDeviceAccess::Control);
  ~KrDeviceU3V() override;
};
