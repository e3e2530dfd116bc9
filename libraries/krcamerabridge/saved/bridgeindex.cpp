#include "saved/bridgeindex.h"

#include <string>

namespace krcamerabridge {

KrPropertyList MakeBridgeIndex(std::span<const KrDeviceSerial> aPorts) {
  KrPropertyList index;
  for (const KrDeviceSerial port : aPorts)
    index.Add({KrString("CameraBridge" + std::to_string(index.GetCount())), GetPortName(port)});
  return index;
}

KrString FormatMissingPort(const KrString& aName) {
  return "Could not load camera bridge for port " + aName + " as the serial port does not exist for the device.";
}

} // namespace krcamerabridge
