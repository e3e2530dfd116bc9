#pragma once
// The keys by which the finder finds a node again when discovery reports the same interface or device once more.

#include "logic/finder/treeiteminfo.h"

#include <string>

namespace krgui {

/// An interface's key: its unique ID, but a network adapter's is its MAC address; with "/" and the adapter's name
/// behind it where another adapter has the same MAC address, or the adapter has none.
std::string GetInterfaceKey(InterfaceSpan aAll, const KrInterface& aInterface);

/// A device's key: the unique ID of its interface followed by its MAC address, by its unique ID for a plain USB device;
/// the GUID alone for a USB3 Vision device. Where the device states no MAC address or GUID, its unique ID stands for
/// it.
std::string GetDeviceKey(const KrInterface* aInterface, const KrDeviceInfo& aDevice);

} // namespace krgui
