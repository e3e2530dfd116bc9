#pragma once
// What the finder is told of host controllers and devices, from what the kernel's files, the descriptors and the
// device's own texts say. What each field means on Linux stands in docs/usb3vision.md.

#include "krbase/krresult.h"
#include "krsystem/krdeviceinfo.h"
#include "krsystem/krinterface.h"
#include "usb3vision/usbtree.h"

#include <string>
#include <vector>

namespace krtransport {

/// What a device is to a finder of cameras.
enum class UsbKind {
  Other,  ///< No camera; not listed.
  Unused, ///< A USB3 Vision device that the system does not use as it is.
  Camera, ///< A USB3 Vision device in a configuration.
};

UsbKind GetUsbKind(const UsbDevice& aDevice);

/// The device info descriptor of the configuration in use, or else of the first that has one; null where there is none.
const U3VDeviceInfo* FindDeviceInfo(const UsbDevice& aDevice);

krsystem::USBHostControllerFields MakeControllerFields(const UsbController& aController);

/// aPermission says whether the device file can be opened; aTexts holds the texts of the device info descriptor in its
/// order, or none where they were not read.
krsystem::U3VFields MakeCameraFields(const UsbDevice& aDevice, const std::string& aUniqueID,
                                     const KrResult& aPermission, const std::vector<std::string>& aTexts);

/// aHub is the hub that the device is plugged into; null for a root hub.
krsystem::USBFields MakeUnusedFields(const UsbDevice& aDevice, const std::string& aUniqueID, const UsbDevice* aHub);

} // namespace krtransport
