#include "simulation/simulatedu3vdevice.h"

#include "simulation/simulatedcamera.h"
#include "simulation/simulatedlink.h"

#include <utility>

namespace krtransport {

SimulatedU3VDevice::SimulatedU3VDevice(LabU3VCamera aCamera, std::shared_ptr<ICameraClock> aClock)
    : mDescription(std::move(aCamera)),
      mCamera([this, clock = std::move(aClock)] { return std::make_shared<SimulatedCamera>(mDescription, clock); }) {}

krsystem::AnyDeviceFields SimulatedU3VDevice::GetFields() const {
  const std::shared_ptr<SimulatedCamera> camera = mCamera.Find();
  return MakeFields(mDescription, camera ? camera->GetUserDefinedName() : mDescription.userDefinedName);
}

KrResult SimulatedU3VDevice::Open(krsystem::DeviceAccess aAccess, std::unique_ptr<krsystem::IDeviceLink>& aLink) {
  if (!mDescription.isDriverInstalled)
    return Refuse(KrResult::Code::AccessDenied,
                  "this user may not open its device file; install the udev rule that comes along.");
  if (!mDescription.isConfigurationValid)
    return Refuse(KrResult::Code::WrongState, "it is in no valid configuration; unplug it and plug it in again.");
  return SimulatedLink::Open(mCamera.Get(), aAccess, aLink);
}

} // namespace krtransport
