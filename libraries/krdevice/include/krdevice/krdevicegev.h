#pragma once
// A GigE Vision device, and what can be done to one without opening it.

#include "krdevice/krdevice.h"

#include <mutex>

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

/// The ways in which a GigE Vision device gets its address, and the address that it keeps for itself (GigE Vision 2.x,
/// registers 0x0010, 0x0014 and 0x064C to 0x066C). It lasts over switching off; it counts from the next start on.
struct KrLastingIPConfiguration {
  bool persistent = false; ///< Its own address comes first.
  bool dhcp = true;        ///< Else it asks a DHCP server.
  bool linkLocal = true;   ///< Else it takes one of 169.254/16. The standard has it always on.
  /// The address that it keeps, as texts "a.b.c.d".
  KrString address = "0.0.0.0";
  KrString subnetMask = "0.0.0.0"; ///< "a.b.c.d".
  KrString gateway = "0.0.0.0";    ///< "a.b.c.d"; 0.0.0.0 for none.
  /// Whether all members are equal.
  friend bool operator==(const KrLastingIPConfiguration&, const KrLastingIPConfiguration&) = default;
};

/// An open GigE Vision device. Threads and ownership as KrDevice.
class KR_EXPORT KrDeviceGEV : public KrDevice {
public:
  /// A device on an open link, which it takes over.
  KrDeviceGEV(std::unique_ptr<krsystem::IDeviceLink> aLink, krsystem::DeviceFields aFields,
              KrDeviceAccess aAccess = KrDeviceAccess::Control);
  ~KrDeviceGEV() override;

  /// Reads how the device gets its address at its next start.
  KrResult GetLastingIPConfiguration(KrLastingIPConfiguration& aConfiguration);
  /// Writes it, as a whole: other calls of this object wait. The device must be open with control. Ways that the device
  /// does not have are NotSupported; texts that do not parse and addresses that no device of the subnet can have
  /// (0.0.0.0 with persistent, multicast, loopback, the subnet's own or its broadcast address, a mask with a gap)
  /// InvalidInput, before anything is written. Where writing fails midway, what was written before is put back. Read
  /// back and compared: ProtocolError when the device keeps something else, and then, too, what was there before is put
  /// back. An address that does not count yet (persistent is false) is kept all the same.
  KrResult SetLastingIPConfiguration(const KrLastingIPConfiguration& aConfiguration);

  /// Gives the device of a MAC address ("aa:bb:cc:dd:ee:ff") another IP configuration (texts "a.b.c.d") until its next
  /// start (GigE Vision 2.x, FORCEIP), on the adapter where it answers. InvalidInput for texts that do not parse,
  /// NotFound when no device confirms,
  /// with a text that says whether it answers at all: some keep silent while an application controls them.
  static KrResult SetIPConfiguration(const KrString& aMAC, const KrString& aAddress, const KrString& aSubnetMask,
                                     const KrString& aGateway);
  /// Asks the device of an address who controls it, without taking control: one register is read, once, within 200 ms.
  static KrResult GetAccessType(const KrString& aAddress, KrAccessType& aType);

private:
  std::mutex mLastingIP; // Guards the registers of the lasting configuration: they are one whole.
};
