#pragma once
// A GigE Vision device, and what can be done to one without opening it.

#include "krdevice/krdevice.h"

/// Who controls a GigE Vision device; the numbers are part of the interface.
enum class KrAccessType : std::int32_t { Unknown = 0, Open = 1, Control = 2, Exclusive = 3, ReadOnly = 4 };

/// An open GigE Vision device. Threads and ownership as KrDevice.
class KR_EXPORT KrDeviceGEV : public KrDevice {
public:
  KrDeviceGEV(std::unique_ptr<krsystem::IDeviceLink> aLink, krsystem::DeviceFields aFields);
  ~KrDeviceGEV() override;
  KrDeviceInfoType GetType() const override { return KrDeviceInfoType::GEV; }

  /// Gives the device of a MAC address ("aa:bb:cc:dd:ee:ff") another IP configuration (texts "a.b.c.d") until its next
  /// start (GigE Vision 2.x, FORCEIP). InvalidInput for texts that do not parse, NotFound when no device confirms.
  static KrResult SetIPConfiguration(const KrString& aMAC, const KrString& aAddress, const KrString& aSubnetMask,
                                     const KrString& aGateway);
  /// Asks the device of an address who controls it, without taking control. Waits up to a second.
  static KrResult GetAccessType(const KrString& aAddress, KrAccessType& aType);
};
