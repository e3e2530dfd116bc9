#include "usb3vision/usb3visiontransport.h"

#include "krbase/krlogger.h"
#include "usb3vision/libusbaccess.h"
#include "usb3vision/sysfsfolder.h"
#include "usb3vision/usb3visionlink.h"
#include "usb3vision/usbfields.h"
#include "usb3vision/usbidentity.h"

#include <algorithm>
#include <array>
#include <map>
#include <optional>
#include <utility>

namespace krtransport {
namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;

// The longest that one device is waited for while it gives its texts, so that others have their turn.
constexpr milliseconds kTextTimeout{500};
// The driver that the kernel binds to an interface while a program has claimed it.
constexpr const char* kClaimed = "usbfs";
constexpr const char* kPermissionHint =
    " Install the udev rule 70-krgui-usb3vision.rules, which gives permission to whoever sits at this host (see "
    "docs/usb3vision.md), and plug the device in again.";

KrResult RefuseAddress() {
  return {KrResult::Code::NotSupported, "USB3 Vision devices have no network addresses."};
}

// The indexes of the interfaces in a list by the buses of their controllers.
std::map<std::uint32_t, std::size_t> MapBuses(const UsbRoots& aRoots,
                                              const std::vector<krsystem::InterfaceFields>& aInterfaces) {
  std::map<std::uint32_t, std::size_t> indexes;
  for (const UsbController& controller : ReadUsbControllers(aRoots)) {
    const KrString id = MakeControllerFields(controller).uniqueID;
    const auto listed = std::ranges::find_if(aInterfaces, [&id](const krsystem::InterfaceFields& aInterface) {
      const auto* fields = std::get_if<krsystem::USBHostControllerFields>(&aInterface);
      return fields != nullptr && fields->uniqueID == id;
    });
    if (listed == aInterfaces.end())
      continue;
    for (const std::uint32_t bus : controller.buses)
      indexes.emplace(bus, static_cast<std::size_t>(listed - aInterfaces.begin()));
  }
  return indexes;
}

const UsbDevice* FindHub(std::span<const UsbDevice> aAll, const UsbDevice& aDevice) {
  const auto hub = std::ranges::find(aAll, GetParentPort(aDevice.port), &UsbDevice::port);
  return hub != aAll.end() ? &*hub : nullptr;
}

bool IsClaimed(const UsbDevice& aDevice) {
  return std::ranges::any_of(aDevice.interfaces, [](const UsbInterface& aInterface) {
    return aInterface.usbClass == kControlInterface && aInterface.driver == kClaimed;
  });
}

std::vector<std::string> ReadTexts(IUsbAccess& aAccess, const UsbDevice& aDevice, steady_clock::time_point aEnd,
                                   const std::stop_token& aCancel = {}) {
  std::vector<std::string> texts;
  const U3VDeviceInfo* info = FindDeviceInfo(aDevice);
  if (info == nullptr)
    return texts;
  const KrResult read = aAccess.ReadStrings(aDevice.bus, aDevice.address, {info->textIndexes, aEnd, aCancel}, texts);
  if (!read.IsOK() && read != KrResult::Code::Aborted)
    KrLogger("USB3Vision")
        .Log(KrLogLevel::Info, {"ReadTexts", "usb3visiontransport"},
             "The device at USB port " + aDevice.port + " is listed without its own texts. " + read.GetDescription());
  return texts;
}

// Whether Aravis would take a device for the one of these names: it passes over those that are empty.
bool HasNames(const Usb3VisionNames& aNames, const UsbDevice& aDevice) {
  const auto fits = [](const std::string& aName, const std::string& aText) { return aName.empty() || aName == aText; };
  return fits(aNames.manufacturer, aDevice.manufacturer) && fits(aNames.product, aDevice.product) &&
         fits(aNames.serial, aDevice.serial);
}

const KrString& GetDisplayID(const krsystem::AnyDeviceFields& aFields) {
  return std::visit([](const auto& aKind) -> const KrString& { return aKind.displayID; }, aFields);
}

} // namespace

Usb3VisionTransport::Usb3VisionTransport() : mAccess(std::make_shared<LibUsbAccess>(mRoots)) {}

Usb3VisionTransport::Usb3VisionTransport(UsbRoots aRoots, std::shared_ptr<IUsbAccess> aAccess)
    : mRoots(std::move(aRoots)), mAccess(std::move(aAccess)) {}

KrResult Usb3VisionTransport::ListInterfaces(std::vector<krsystem::InterfaceFields>& aInterfaces) {
  aInterfaces.clear();
  for (const UsbController& controller : ReadUsbControllers(mRoots))
    aInterfaces.emplace_back(MakeControllerFields(controller));
  return {};
}

KrResult Usb3VisionTransport::Discover(const std::vector<krsystem::InterfaceFields>& aInterfaces,
                                       const krsystem::DiscoveryRequest& aRequest,
                                       const krsystem::DeviceReport& aReport) {
  const KrResult cancelled(KrResult::Code::Aborted, "Looking for USB devices was cancelled.");
  const auto end = steady_clock::now() + milliseconds(aRequest.timeoutMs);
  const auto indexes = MapBuses(mRoots, aInterfaces);
  const std::vector<UsbDevice> devices = ReadUsbDevices(mRoots, aRequest.cancel);
  const std::vector<std::string> ids = MakeUniqueIDs(devices);
  for (std::size_t i = 0; i < devices.size(); ++i) {
    if (aRequest.cancel.stop_requested())
      return cancelled;
    const auto index = indexes.find(devices[i].bus);
    if (index == indexes.end() || GetUsbKind(devices[i]) == UsbKind::Other)
      continue;
    const krsystem::AnyDeviceFields fields = MakeFields(devices[i], ids[i], devices, end, aRequest.cancel);
    // A device whose texts were cut off is not told of by halves.
    if (aRequest.cancel.stop_requested())
      return cancelled;
    aReport(index->second, fields);
  }
  return aRequest.cancel.stop_requested() ? cancelled : KrResult();
}

krsystem::AnyDeviceFields Usb3VisionTransport::MakeFields(const UsbDevice& aDevice, const std::string& aUniqueID,
                                                          std::span<const UsbDevice> aAll,
                                                          steady_clock::time_point aEnd,
                                                          const std::stop_token& aCancel) const {
  if (GetUsbKind(aDevice) == UsbKind::Unused)
    return MakeUnusedFields(aDevice, aUniqueID, FindHub(aAll, aDevice));
  const KrResult permission = mAccess->CheckPermission(aDevice.bus, aDevice.address);
  std::vector<std::string> texts;
  const auto now = steady_clock::now();
  if (permission.IsOK() && now < aEnd)
    texts = ReadTexts(*mAccess, aDevice, std::min(aEnd, now + kTextTimeout), aCancel);
  return MakeCameraFields(aDevice, aUniqueID, permission, texts);
}

KrResult Usb3VisionTransport::FindAddress(std::uint32_t, std::uint32_t, krsystem::InterfaceFields&,
                                          krsystem::AnyDeviceFields&) {
  return RefuseAddress();
}

KrResult Usb3VisionTransport::ConfigureIP(const KrString&, const KrString&, const KrString&, const KrString&) {
  return RefuseAddress();
}

KrResult Usb3VisionTransport::GetAccessType(const krsystem::AnyDeviceFields& aDevice, krsystem::AccessType& aType) {
  // Who asks about an address asks every transport: that it is not ours is no fault of his.
  if (std::holds_alternative<krsystem::GEVFields>(aDevice) ||
      std::holds_alternative<krsystem::TolvanProtocolFields>(aDevice))
    return RefuseAddress();
  UsbDevice device;
  if (KrResult result = FindDevice(aDevice, device); !result.IsOK())
    return result;
  aType = IsClaimed(device) ? krsystem::AccessType::Exclusive : krsystem::AccessType::Open;
  return {};
}

KrResult Usb3VisionTransport::Open(const krsystem::InterfaceFields&, const krsystem::AnyDeviceFields& aDevice,
                                   krsystem::DeviceAccess aAccess, std::unique_ptr<krsystem::IDeviceLink>& aLink) {
  UsbDevice device;
  if (KrResult result = FindDevice(aDevice, device); !result.IsOK())
    return result;
  const KrString& name = GetDisplayID(aDevice);
  if (KrResult result = CheckUsable(device, name); !result.IsOK())
    return result;
  const std::vector<std::string> texts = ReadTexts(*mAccess, device, steady_clock::now() + kTextTimeout);
  const Usb3VisionNames names{.guid = texts.empty() ? std::string() : texts.front(),
                              .manufacturer = device.manufacturer,
                              .product = device.product,
                              .serial = device.serial};
  if (KrResult result = CheckAlone(device, names, name); !result.IsOK())
    return result;
  KrResult opened = Usb3VisionLink::Open(names, {.roots = mRoots, .device = device}, aAccess, aLink);
  if (opened.IsOK())
    return opened;
  // What Aravis says of a device that vanished or was taken in this moment is less than can be seen.
  if (KrResult result = FindDevice(aDevice, device); !result.IsOK())
    return result;
  KrResult result = CheckUsable(device, name);
  return result.IsOK() ? opened : result;
}

KrResult Usb3VisionTransport::ReadHost(krsystem::HostReadings& aReadings) {
  aReadings.hasUSBTransport = true;
  if (const auto megabytes = SysfsFolder(mRoots.coreParameters).ReadNumber("usbfs_memory_mb", 10))
    aReadings.usbMemoryMegabytes = megabytes;
  const std::vector<UsbDevice> devices = ReadUsbDevices(mRoots);
  const std::vector<std::string> ids = MakeUniqueIDs(devices);
  for (std::size_t i = 0; i < devices.size(); ++i) {
    if (GetUsbKind(devices[i]) == UsbKind::Other)
      continue;
    const KrResult permission = mAccess->CheckPermission(devices[i].bus, devices[i].address);
    const krsystem::U3VFields fields = MakeCameraFields(devices[i], ids[i], permission, {});
    aReadings.usbDevices.push_back({.uniqueID = fields.uniqueID,
                                    .displayID = fields.displayID,
                                    .mayOpen = permission != KrResult::Code::AccessDenied,
                                    .speed = fields.speed});
  }
  return {};
}

KrResult Usb3VisionTransport::FindDevice(const krsystem::AnyDeviceFields& aFields, UsbDevice& aDevice) const {
  const auto* fields = std::get_if<krsystem::U3VFields>(&aFields);
  if (fields == nullptr)
    return {KrResult::Code::InvalidInput,
            GetDisplayID(aFields) + " is no USB3 Vision device that could be opened: the system does not use it."};
  const std::vector<UsbDevice> devices = ReadUsbDevices(mRoots);
  const UsbDevice* found = FindByUniqueID(devices, fields->uniqueID.ToUtf8());
  if (found == nullptr || GetUsbKind(*found) != UsbKind::Camera)
    return {KrResult::Code::NotFound,
            "The USB device " + fields->displayID + " is gone. Check its cable and power, and look for devices again."};
  aDevice = *found;
  return {};
}

// Without its GUID the first one of its names would be opened, whichever that is.
KrResult Usb3VisionTransport::CheckAlone(const UsbDevice& aDevice, const Usb3VisionNames& aNames,
                                         const KrString& aName) const {
  if (!aNames.guid.empty())
    return {};
  const std::vector<UsbDevice> devices = ReadUsbDevices(mRoots);
  const auto twin = std::ranges::find_if(devices, [&](const UsbDevice& aOther) {
    return aOther.port != aDevice.port && GetUsbKind(aOther) == UsbKind::Camera && HasNames(aNames, aOther);
  });
  if (twin == devices.end())
    return {};
  return {KrResult::Code::TimeLimitExceeded, "The USB device " + aName +
                                                 " did not say its GUID, and at USB port " + twin->port +
                                                 " there is one of the same name: which one would be opened is not "
                                                 "known. Try again, or unplug the other one."};
}

KrResult Usb3VisionTransport::CheckUsable(const UsbDevice& aDevice, const KrString& aName) const {
  const KrResult permission = mAccess->CheckPermission(aDevice.bus, aDevice.address);
  if (permission == KrResult::Code::AccessDenied)
    return {permission.GetCode(), "There is no permission to open the USB device " + aName + ". " +
                                      permission.GetDescription() + kPermissionHint};
  if (!permission.IsOK())
    return {permission.GetCode(), "The USB device " + aName + " cannot be opened. " + permission.GetDescription()};
  if (IsClaimed(aDevice))
    return {KrResult::Code::AccessDenied,
            "The USB device " + aName + " is in use by a program. Close it there first; USB has no second reader."};
  return {};
}

} // namespace krtransport
