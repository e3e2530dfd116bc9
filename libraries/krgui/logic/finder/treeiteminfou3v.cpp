#include "logic/finder/treeiteminfou3v.h"

#include "logic/finder/rowtexts.h"

namespace krgui {

namespace {

RowColour GetSpeedColour(const KrDeviceInfoU3V& aDevice) {
  if (!aDevice.IsCurrentSpeedSupported())
    return kWrongRowColour;
  return aDevice.GetSpeed() == kSuperSpeed ? kGoodRowColour : kSuspiciousRowColour;
}

} // namespace

void TreeItemInfoU3V::FillInfo(const KrDeviceInfo& aDevice) {
  mRows.clear();
  mIsReachable = true;
  const auto* const device = dynamic_cast<const KrDeviceInfoU3V*>(&aDevice);
  if (!device)
    return;
  AddDescriptionRows(*device);
  AddVersionRows(*device);
  AddSpeedRows(*device);
  const bool hasDriver = device->IsTolvanDriverInstalled();
  AddRow("Tolvan Driver Installed", hasDriver ? "True" : "Missing driver. See Vesk Player guide",
         hasDriver ? kGoodRowColour : kWrongRowColour);
}

void TreeItemInfoU3V::AddDescriptionRows(const KrDeviceInfoU3V& aDevice) {
  AddRow("Vendor Name", aDevice.GetVendorName());
  AddRow("Model Name", aDevice.GetModelName());
  AddRow("Version", aDevice.GetVersion());
  AddRow("Manufacturer Info", aDevice.GetManufacturerInfo());
  AddRow("Serial Number", aDevice.GetSerialNumber());
  AddRow("User Defined Name", aDevice.GetUserDefinedName());
  AddRow("Configuration Valid", WriteBool(aDevice.IsConfigurationValid()));
  AddRow("Power", aDevice.GetPowerMessage(), aDevice.IsInitializedCapabilities() ? kGoodRowColour : kWrongRowColour);
}

void TreeItemInfoU3V::AddVersionRows(const KrDeviceInfoU3V& aDevice) {
  AddRow("GenCP Version", WriteVersion(aDevice.GetGenCPVersion()));
  AddRow("U3V Version", WriteVersion(aDevice.GetU3VVersion()));
  AddRow("Device GUID", aDevice.GetDeviceGUID());
  AddRow("Family Name", aDevice.GetFamilyName());
  AddRow("U3V Serial Number", aDevice.GetU3VSerialNumber());
}

void TreeItemInfoU3V::AddSpeedRows(const KrDeviceInfoU3V& aDevice) {
  AddRow("Low Speed Supported", WriteBool(aDevice.IsLowSpeedSupported()));
  AddRow("Full Speed Supported", WriteBool(aDevice.IsFullSpeedSupported()));
  AddRow("High Speed Supported", WriteBool(aDevice.IsHighSpeedSupported()));
  AddRow("Super Speed Supported", WriteBool(aDevice.IsSuperSpeedSupported()));
  AddRow("Speed", aDevice.GetSpeedMessage(), GetSpeedColour(aDevice));
  AddRow("Max Power", WriteDecimal(aDevice.GetMaxPower()) + " mA");
}

void TreeItemInfoU3V::UpdateIcon(const KrDeviceInfo& aDevice) {
  const auto* const device = dynamic_cast<const KrDeviceInfoU3V*>(&aDevice);
  if (!device)
    return;
  if (!IsEnabled())
    return SetIcon(FinderIcon::U3VDisabled);
  if (!device->IsTolvanDriverInstalled())
    return SetIcon(FinderIcon::U3VWithoutDriver);
  SetIcon(device->GetSpeed() == kSuperSpeed ? FinderIcon::U3V : FinderIcon::U3VSlow);
}

} // namespace krgui
