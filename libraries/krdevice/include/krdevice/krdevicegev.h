#pragma once
// A GigE Vision device, and what can be done to one without opening it.

#include "krdevice/krdevice.h"

/// Who controls a GigE Vision device, as its control privilege register (GigE Vision 2.x, CCP) tells somebody who may
/// read it; the numbers are part of the interface.
enum class KrAccessType : std::int32_t {
  Unknown = 0,   ///< It does not answer, or not so that it can be told.
  Open = 1,      ///< Nobody.
  Control = 2,   ///< An application, and others may read.
  Exclusive = 3, ///< An application, and others may do nothing.
  ReadOnly =
      4, ///< It can be read and never controlled. The register has no such state: no transport of today gives it.
};

/// An open GigE Vision device. Threads and ownership as KrDevice.
class KR_EXPORT KrDeviceGEV : public KrDevice {
public:
  KrDeviceGEV(std::unique_ptr<krsystem::IDeviceLink> aLink, krsystem::DeviceFields aFields,
              KrDeviceAccess aAccess = KrDeviceAccess::Control);
  ~KrDeviceGEV() override;

  /// Gives the device of a MAC address ("aa:bb:cc:dd:ee:ff") another IP configuration (texts "a.b.c.d") until its next
  /// start (GigE Vision 2.x, FORCEIP). InvalidInput for texts that do not parse, NotFound when no device confirms.
  static KrResult SetIPConfiguration(const KrString& aMAC, const KrString& aAddress, const KrString& aSubnetMask,
                                     const KrString& aGateway);
  /// Asks the device of an address who controls it, without taking control. Waits up to a second.
  static KrResult GetAccessType(const KrString& aAddress, KrAccessType& aType);
};
