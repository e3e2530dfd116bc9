#pragma once
// What tells one USB device from all others while it is plugged in, and lets it be known again afterwards, with or
// without permission to open it.

#include "usb3vision/usbtree.h"

#include <span>
#include <string>
#include <vector>

namespace krtransport {

/// The IDs of devices, in their order: "2676:ba02:21912345" of vendor, product and serial number; with "@" and the port
/// where there is no serial number or another device has the same.
std::vector<std::string> MakeUniqueIDs(std::span<const UsbDevice> aDevices);

/// The device of an ID, also of one given to it when another device with the same numbers was or was not there; null
/// where there is none.
const UsbDevice* FindByUniqueID(std::span<const UsbDevice> aDevices, const std::string& aUniqueID);

/// Whether a device that was plugged in anew is the one that was known: the same vendor, product and serial number, or
/// without that the same port.
bool IsSameDevice(const UsbDevice& aKnown, const UsbDevice& aOther);

} // namespace krtransport
