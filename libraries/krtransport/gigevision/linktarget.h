#pragma once
// Where an open device is and how it was opened: what every part of a link has to know.

#include "gigevision/packetpacing.h"
#include "krsystem/itransport.h"

#include <cstdint>
#include <string>

namespace krtransport {

struct LinkTarget {
  std::uint32_t deviceAddress = 0;
  KrString uniqueID;              ///< Of the device that was found there; empty where any will do.
  std::uint32_t localAddress = 0; ///< This host's address on the way to the device.
  std::string adapterName;
  /// The routing table leads elsewhere than to the device: what is read is asked on the adapter itself, and nothing
  /// else can be done.
  bool isOffRoute = false;
  LinkSpeedReader readLinkSpeed; ///< Of the adapter.
  krsystem::DeviceAccess access = krsystem::DeviceAccess::Control;
};

} // namespace krtransport
