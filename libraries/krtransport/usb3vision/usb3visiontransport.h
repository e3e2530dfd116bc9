#pragma once
// The backend for USB3 Vision devices on this host's USB host controllers. Devices are found in the kernel's own lists,
// open ones stand on Aravis; none of that shows here.

#include "krsystem/itransport.h"
#include "usb3vision/iusbaccess.h"
#include "usb3vision/usbtree.h"

#include <memory>

namespace krtransport {

struct Usb3VisionNames;

/// USB3 Vision.
///
/// The interfaces are the host controllers. Listed are USB3 Vision devices, and as plain USB devices those of them that
/// the system does not use; of other devices on the bus nothing is said.
///
/// Thread, ownership: as ITransport. Reports of Discover come on the caller's thread.
class Usb3VisionTransport final : public krsystem::ITransport {
public:
  /// The devices of this host.
  Usb3VisionTransport();
  /// The devices below other roots.
  Usb3VisionTransport(UsbRoots aRoots, std::shared_ptr<IUsbAccess> aAccess);

  KrString GetName() const override { return "USB3 Vision"; }
  /// None, without a failure, on a host without USB.
  KrResult ListInterfaces(std::vector<krsystem::InterfaceFields>& aInterfaces) override;
  /// Goes once through the kernel's list. The time limit is that of the whole round: devices that it leaves no time to
  /// ask are listed without their texts. Interfaces of another kind are passed over.
  KrResult Discover(const std::vector<krsystem::InterfaceFields>& aInterfaces,
                    const krsystem::DiscoveryRequest& aRequest, const krsystem::DeviceReport& aReport) override;
  /// NotSupported: USB has no network addresses.
  KrResult FindAddress(std::uint32_t aAddress, std::uint32_t aTimeoutMs, krsystem::InterfaceFields& aInterface,
                       krsystem::AnyDeviceFields& aDevice) override;
  /// NotSupported, for the same reason.
  KrResult ConfigureIP(const KrString& aMAC, const KrString& aAddress, const KrString& aMask,
                       const KrString& aGateway) override;
  /// Exclusive for a device whose control interface a program has claimed, else Open. NotFound when the device is gone,
  /// NotSupported for one of another kind.
  KrResult GetAccessType(const krsystem::AnyDeviceFields& aDevice, krsystem::AccessType& aType) override;
  /// NotFound when the device is gone; AccessDenied, with different texts, when permission is missing and when another
  /// program has the device, TimeLimitExceeded when it does not say its GUID and an equal one is there. Control and
  /// exclusive access are the same on USB.
  KrResult Open(const krsystem::InterfaceFields& aInterface, const krsystem::AnyDeviceFields& aDevice,
                krsystem::DeviceAccess aAccess, std::unique_ptr<krsystem::IDeviceLink>& aLink) override;
  /// The devices that Discover would report, whose names are those that the kernel has read of them.
  KrResult ReadHost(krsystem::HostReadings& aReadings) override;

private:
  KrResult FindDevice(const krsystem::AnyDeviceFields& aFields, UsbDevice& aDevice) const;
  KrResult CheckAlone(const UsbDevice& aDevice, const Usb3VisionNames& aNames, const KrString& aName) const;
  KrResult CheckUsable(const UsbDevice& aDevice, const KrString& aName) const;
  krsystem::AnyDeviceFields MakeFields(const UsbDevice& aDevice, const std::string& aUniqueID,
                                       std::span<const UsbDevice> aAll, std::chrono::steady_clock::time_point aEnd,
                                       const std::stop_token& aCancel) const;

  const UsbRoots mRoots;
  const std::shared_ptr<IUsbAccess> mAccess;
};

} // namespace krtransport
