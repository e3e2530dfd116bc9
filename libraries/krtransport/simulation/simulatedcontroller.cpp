#include "simulation/simulatedcontroller.h"

#include "simulation/simulatedu3vdevice.h"
#include "simulation/simulatedusbdevice.h"

namespace krtransport {

namespace {

SimulatedInterface::Devices MakeDevices(const LabController& aController, const std::shared_ptr<ICameraClock>& aClock) {
  SimulatedInterface::Devices devices;
  for (const LabUSBDevice& device : aController.devices) {
    if (const auto* camera = std::get_if<LabU3VCamera>(&device))
      devices.push_back(std::make_shared<SimulatedU3VDevice>(*camera, aClock));
    else
      devices.push_back(std::make_shared<SimulatedUSBDevice>(std::get<LabPlainUSBDevice>(device)));
  }
  return devices;
}

krsystem::USBHostControllerFields MakeFields(const LabController& aController) {
  krsystem::USBHostControllerFields fields;
  fields.uniqueID = aController.name;
  fields.displayID = aController.description + " (" + aController.name + ")";
  fields.vendorID = aController.vendorID;
  fields.deviceID = aController.deviceID;
  fields.subsystemID = aController.subsystemID;
  fields.revision = aController.revision;
  fields.speed = aController.speed;
  return fields;
}

} // namespace

SimulatedController::SimulatedController(const LabController& aController, const std::shared_ptr<ICameraClock>& aClock)
    : SimulatedInterface(MakeDevices(aController, aClock)), mFields(MakeFields(aController)),
      mSchedule(aController.schedule) {}

void SimulatedController::ReadHost(std::uint64_t, krsystem::HostReadings& aReadings) const {
  aReadings.hasUSBTransport = true;
  for (const std::shared_ptr<SimulatedDevice>& device : GetDevices()) {
    const krsystem::AnyDeviceFields fields = device->GetFields();
    const auto* const camera = std::get_if<krsystem::U3VFields>(&fields);
    if (camera && device->IsPresent())
      aReadings.usbDevices.push_back({.uniqueID = camera->uniqueID,
                                      .displayID = camera->displayID,
                                      .mayOpen = camera->driverInstalled,
                                      .speed = camera->speed});
  }
}

KrResult SimulatedController::IsAddressUsed(std::uint32_t, bool&) const {
  return {KrResult::Code::NotSupported, "Asking who uses an address: " + mFields.displayID + " is no network adapter."};
}

} // namespace krtransport
