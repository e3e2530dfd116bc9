#include "logic/finder/treeiteminfotolvanprotocol.h"

#include "logic/finder/networkrows.h"
#include "logic/finder/rowtexts.h"

namespace krgui {

void TreeItemInfoTolvanProtocol::FillInfo(const KrDeviceInfo& aDevice) {
  mRows.clear();
  mIsReachable = aDevice.IsConfigurationValid();
  const auto* const device = dynamic_cast<const KrDeviceInfoTolvanProtocol*>(&aDevice);
  if (!device)
    return;
  mRows = MakeNetworkRows(device->GetInterface(), device->GetFields());
  AddRow("Device ID", WriteHex(device->GetDeviceID(), 2));
  AddRow("Module ID", WriteHex(device->GetModuleID(), 2));
  AddRow("Sub ID", WriteHex(device->GetSubID(), 2));
  AddRow("Vendor ID", WriteHex(device->GetVendorID(), 2));
  AddRow("Software Major", WriteDecimal(device->GetSoftwareMajor()));
  AddRow("Software Minor", WriteDecimal(device->GetSoftwareMinor()));
}

void TreeItemInfoTolvanProtocol::UpdateIcon(const KrDeviceInfo& aDevice) {
  if (!IsEnabled())
    return SetIcon(FinderIcon::TolvanProtocolDisabled);
  SetIcon(aDevice.IsConfigurationValid() ? FinderIcon::TolvanProtocol : FinderIcon::TolvanProtocolInvalid);
}

} // namespace krgui
