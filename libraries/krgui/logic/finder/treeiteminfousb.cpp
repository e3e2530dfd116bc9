#include "logic/finder/treeiteminfousb.h"

#include <array>

namespace krgui {

namespace {

constexpr std::array kStatusTexts = {"Connected",
                                     "Failed Enumeration",
                                     "General Failure",
                                     "Caused Overcurrent",
                                     "Not Enough Power",
                                     "Not Enough Bandwidth",
                                     "Hub Nested Too Deeply",
                                     "Legacy Hub",
                                     "Enumerating",
                                     "Reset"};

const char* GetStatusText(std::int32_t aStatus) {
  return aStatus >= 0 && aStatus < static_cast<std::int32_t>(kStatusTexts.size())
             ? kStatusTexts[static_cast<std::size_t>(aStatus)]
             : "Unknown";
}

} // namespace

void TreeItemInfoUSB::FillInfo(const KrDeviceInfo& aDevice) {
  mRows.clear();
  mIsReachable = true;
  if (const auto* const device = dynamic_cast<const KrDeviceInfoUSB*>(&aDevice))
    AddRow("Status", GetStatusText(device->GetStatus()));
}

void TreeItemInfoUSB::UpdateIcon(const KrDeviceInfo&) {
  SetIcon(IsEnabled() ? FinderIcon::USB : FinderIcon::USBDisabled);
}

} // namespace krgui
