#pragma once
// A device of the older Tolvan protocol, and what can be done to one without opening it.

#include "krdevice/krdevice.h"

/// An open device of the older Tolvan protocol. Threads and ownership as KrDevice.
class KR_EXPORT KrDeviceTolvanProtocol : public KrDevice {
public:
  /// A device on an open link, which it takes over.
  KrDeviceTolvanProtocol(std::unique_ptr<krsystem::IDeviceLink> aLink, krsystem::DeviceFields aFields,
                         KrDeviceAccess aAccess = KrDeviceAccess::Control);
  ~KrDeviceTolvanProtocol() override;

  /// Gives the device of a MAC address another IP configuration; arguments and results as KrDeviceGEV's.
  static KrResult SetIPConfiguration(const KrString& aMAC, const KrString& aAddress, const KrString& aSubnetMask,
                                     const KrString& aGateway);
};
