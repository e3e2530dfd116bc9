#include "logic/finder/treeiteminfogev.h"

#include "logic/finder/networkrows.h"
#include "logic/finder/rowtexts.h"

#include <array>

namespace krgui {

namespace {

constexpr std::array<const char*, 5> kClassTexts = {"Unknown", "Transmitter", "Receiver", "Transceiver", "Peripheral"};

struct AccessStatus {
  const char* text;
  RowColour colour;
};

constexpr std::array<AccessStatus, 5> kAccessStatuses = {{{"Unknown", kGoodRowColour},
                                                          {"Open", kGoodRowColour},
                                                          {"Control", kSuspiciousRowColour},
                                                          {"Exclusive", kSuspiciousRowColour},
                                                          {"Read-Only", kGoodRowColour}}};

// The first entry of each table stands for the numbers that it does not have.
template <typename Entry, std::size_t kCount>
const Entry& FindEntry(const std::array<Entry, kCount>& aTable, std::int64_t aNumber) {
  return aNumber >= 0 && aNumber < static_cast<std::int64_t>(kCount) ? aTable[static_cast<std::size_t>(aNumber)]
                                                                     : aTable[0];
}

KrString GetConfigurationText(const KrDeviceInfoGEV& aDevice) {
  if (aDevice.IsConfigurationValid())
    return "Valid";
  return aDevice.GetIPAddress() == kNoAddress ? "Invalid" : "Invalid on this interface";
}

} // namespace

void TreeItemInfoGEV::RefreshInfo(const AccessQuery& aQuery) {
  if (mIPAddress.IsEmpty() || mIsAccessStatusDone)
    return;
  const AccessStatus& status = FindEntry(kAccessStatuses, aQuery(mIPAddress));
  mRows[mAccessStatusRow].value = status.text;
  mRows[mAccessStatusRow].colour = status.colour;
  mIsAccessStatusDone = true;
}

void TreeItemInfoGEV::FillInfo(const KrDeviceInfo& aDevice) {
  mRows.clear();
  mIPAddress.Clear();
  mIsReachable = aDevice.IsConfigurationValid();
  mIsAccessStatusDone = false;
  const auto* const device = dynamic_cast<const KrDeviceInfoGEV*>(&aDevice);
  if (!device)
    return;
  if (device->IsConfigurationValid())
    mIPAddress = device->GetIPAddress();
  mRows = MakeNetworkRows(device->GetInterface(), device->GetFields());
  AddDescriptionRows(*device);
  AddConfigurationRows(*device);
}

void TreeItemInfoGEV::AddDescriptionRows(const KrDeviceInfoGEV& aDevice) {
  AddRow("Vendor", aDevice.GetVendorName());
  AddRow("Model", aDevice.GetModelName());
  mAccessStatusRow = mRows.size();
  AddRow("Access Status", "Unknown");
  AddRow("Manufacturer Info", aDevice.GetManufacturerInfo());
  AddRow("Version", aDevice.GetVersion());
  AddRow("Serial Number", aDevice.GetSerialNumber());
  AddRow("User Defined Name", aDevice.GetUserDefinedName());
}

void TreeItemInfoGEV::AddConfigurationRows(const KrDeviceInfoGEV& aDevice) {
  AddRow("Protocol Version", WriteVersion(aDevice.GetGEVVersion()));
  AddRow("IP Configuration", GetConfigurationText(aDevice),
         aDevice.IsConfigurationValid() ? kGoodRowColour : kWrongRowColour);
  AddRow("Device Class", FindEntry(kClassTexts, aDevice.GetClass()));
  AddRow("IP Config Options", aDevice.GetIPConfigOptionsString());
  AddRow("Current IP Config", aDevice.GetIPConfigCurrentString());
}

void TreeItemInfoGEV::UpdateIcon(const KrDeviceInfo& aDevice) {
  if (!IsEnabled())
    return SetIcon(FinderIcon::GEVDisabled);
  SetIcon(aDevice.IsConfigurationValid() ? FinderIcon::GEV : FinderIcon::GEVInvalid);
}

} // namespace krgui
