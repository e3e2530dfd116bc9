#include "usbcauses.h"

#include "findingtext.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <string>

namespace krsystem {

namespace {

// The line of scripts/70-krgui-usb3vision.rules, so that the remedy does not depend on where that is installed.
constexpr const char* kRule =
    R"(ACTION!="remove", SUBSYSTEM=="usb", ENV{DEVTYPE}=="usb_device", ENV{ID_USB_INTERFACES}=="*:ef0500:*", )"
    R"(MODE="0660", GROUP="plugdev", TAG+="uaccess")";

// The speeds that are too slow, by their number.
constexpr std::array<const char*, 4> kSlowSpeeds = {nullptr, "Low Speed (1.5 Mbit/s)", "Full Speed (12 Mbit/s)",
                                                    "High Speed (480 Mbit/s)"};

const U3VFields* FindAnswer(const std::vector<AnsweredDevice>& aAnswered, const KrString& aUniqueID) {
  for (const AnsweredDevice& answered : aAnswered) {
    const auto* const fields = std::get_if<U3VFields>(&answered.fields);
    if (fields && fields->uniqueID == aUniqueID)
      return fields;
  }
  return nullptr;
}

// What is on the bus, and besides what answered without having been read there.
std::vector<USBReading> JoinDevices(const HostReadings& aReadings, const std::vector<AnsweredDevice>& aAnswered) {
  std::vector<USBReading> devices = aReadings.usbDevices;
  for (const AnsweredDevice& answered : aAnswered) {
    const auto* const fields = std::get_if<U3VFields>(&answered.fields);
    if (fields && std::ranges::find(devices, fields->uniqueID, &USBReading::uniqueID) == devices.end())
      devices.push_back({fields->uniqueID, fields->displayID, fields->driverInstalled, fields->speed});
  }
  return devices;
}

KrFinding MakePermission(const KrString& aName) {
  return {KrFindingKind::USBPermission, aName,
          aName + " may not be opened: its device file may be read and written by others only.",
          "Add the udev rule for USB3 Vision cameras, then plug the camera in again.\n"
          "echo '" +
              std::string(kRule) +
              "' | sudo tee /etc/udev/rules.d/70-krgui-usb3vision.rules\n"
              "sudo udevadm control --reload"};
}

KrFinding MakeSpeed(const KrString& aName, const char* aSpeed) {
  return {KrFindingKind::USBSpeed, aName, aName + " is connected at " + aSpeed + ", and cameras need Super Speed.",
          "Connect it to a USB 3.0 (SuperSpeed) port, with a cable for USB 3.0 and without a slower hub in between."};
}

KrFinding MakeMemory(std::uint64_t aMegabytes) {
  return {KrFindingKind::USBMemory,
          {},
          "All USB transfers together are given " + std::to_string(aMegabytes) +
              " MB of memory (usbfs_memory_mb), and large frames take " + std::to_string(kUSBMemoryNeedMegabytes) +
              ": such a stream will not start.",
          "Raise the limit; usbcore.usbfs_memory_mb=1000 on the kernel's command line keeps it.\n"
          "echo 1000 | sudo tee /sys/module/usbcore/parameters/usbfs_memory_mb"};
}

// A device that cannot be faster is not slowed down by its port.
bool IsSlowedDown(const USBReading& aDevice, const std::vector<AnsweredDevice>& aAnswered) {
  if (aDevice.speed < 1 || aDevice.speed >= std::ssize(kSlowSpeeds))
    return false;
  const U3VFields* const fields = FindAnswer(aAnswered, aDevice.uniqueID);
  return !fields || !fields->initializedCapabilities || fields->superSpeedSupported;
}

} // namespace

void FindUSBCauses(const HostReadings& aReadings, const std::vector<AnsweredDevice>& aAnswered,
                   std::vector<KrFinding>& aFindings) {
  const std::vector<USBReading> devices = JoinDevices(aReadings, aAnswered);
  for (const USBReading& device : devices) {
    const KrString& name = device.displayID.IsEmpty() ? device.uniqueID : device.displayID;
    if (!device.mayOpen)
      aFindings.push_back(MakePermission(name));
    if (IsSlowedDown(device, aAnswered))
      aFindings.push_back(MakeSpeed(name, kSlowSpeeds[static_cast<std::size_t>(device.speed)]));
  }
  const std::uint64_t megabytes = aReadings.usbMemoryMegabytes.value_or(0); // 0 stands for no limit.
  if (!devices.empty() && megabytes != 0 && megabytes < kUSBMemoryNeedMegabytes)
    aFindings.push_back(MakeMemory(megabytes));
}

} // namespace krsystem
