#pragma once
// What can be asked of a device's fields whatever its kind. What a kind alone has is left to who knows the kind.

#include "krsystem/itransport.h"

namespace krsystem {

/// The fields that every kind has.
const DeviceFields& GetDeviceFields(const AnyDeviceFields& aDevice);
/// The fields of a device on the network; null for one on a USB bus.
const NetworkFields* GetNetworkFields(const AnyDeviceFields& aDevice);
/// Whether two answers under one MAC address can only be of two devices: what never changes differs, or both have an
/// address and not the same. One that only gets its address in between is one device.
bool AreTwoDevices(const AnyDeviceFields& aFirst, const AnyDeviceFields& aSecond);

} // namespace krsystem
