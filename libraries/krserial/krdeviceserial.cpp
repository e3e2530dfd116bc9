#include "krserial/krdeviceserial.h"

#include <algorithm>
#include <cstddef>

namespace {

constexpr std::array kNames = {"Serial0", "Serial1", "Bulk0", "Bulk1", "Bulk2",
                               "Bulk3",   "Bulk4",   "Bulk5", "Bulk6", "Bulk7"};
static_assert(kNames.size() == kDeviceSerialPorts.size());

} // namespace

KrString GetPortName(KrDeviceSerial aPort) {
  const auto index = static_cast<std::uint32_t>(aPort);
  return index < kNames.size() ? kNames[index] : "Invalid";
}

KrDeviceSerial FindPort(const KrString& aName) {
  const auto port =
      std::ranges::find_if(kDeviceSerialPorts, [&](KrDeviceSerial aPort) { return GetPortName(aPort) == aName; });
  return port != kDeviceSerialPorts.end() ? *port : KrDeviceSerial::Invalid;
}

bool IsBulkPort(KrDeviceSerial aPort) {
  return aPort >= KrDeviceSerial::Bulk0 && aPort <= KrDeviceSerial::Bulk7;
}
