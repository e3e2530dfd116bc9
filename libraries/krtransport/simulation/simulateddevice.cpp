#include "simulation/simulateddevice.h"

namespace krtransport {

KrResult SimulatedDevice::Refuse(KrResult::Code aCode, const KrString& aReason) const {
  const krsystem::AnyDeviceFields fields = GetFields();
  return {aCode,
          std::visit([](const krsystem::DeviceFields& aFields) { return aFields.displayID; }, fields) + ": " + aReason};
}

KrResult SimulatedDevice::ConfigureIP(const IPConfiguration&) {
  return Refuse(KrResult::Code::NotSupported, "it has no IP address.");
}

KrResult SimulatedDevice::GetAccessType(krsystem::AccessType&) {
  return Refuse(KrResult::Code::NotSupported, "who controls it can be asked of GigE Vision devices only.");
}

KrResult SimulatedDevice::Open(krsystem::DeviceAccess, std::unique_ptr<krsystem::IDeviceLink>&) {
  return Refuse(KrResult::Code::NotSupported,
                "it is shown and never opened; open a GigE Vision or a USB3 Vision camera.");
}

} // namespace krtransport
