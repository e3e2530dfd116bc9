#include "logic/finder/treeiteminfousbhostcontroller.h"

#include "logic/finder/rowtexts.h"

namespace krgui {

namespace {

const char* GetSpeedText(std::int32_t aSpeed) {
  constexpr const char* kTexts[] = {"Unknown", "Low", "Full", "High", "Super"};
  return aSpeed >= 1 && aSpeed <= kSuperSpeed ? kTexts[aSpeed] : kTexts[0];
}

} // namespace

void TreeItemInfoUSBHostController::FillInfo(InterfaceSpan, const KrInterface& aInterface) {
  mRows.clear();
  const auto* const controller = dynamic_cast<const KrUSBHostController*>(&aInterface);
  if (!controller)
    return;
  AddRow("Description", controller->GetDisplayID());
  AddRow("Vendor ID", WriteHex(controller->GetVendorID(), 4));
  AddRow("Device ID", WriteHex(controller->GetDeviceID(), 4));
  AddRow("Subsystem ID", WriteHex(controller->GetSubsystemID(), 8));
  AddRow("Revision", WriteDecimal(controller->GetRevision()));
  AddRow("Speed", GetSpeedText(controller->GetSpeed()),
         controller->GetSpeed() == kSuperSpeed ? kGoodRowColour : kSuspiciousRowColour);
}

void TreeItemInfoUSBHostController::UpdateIcon(InterfaceSpan, const KrInterface&) {
  SetIcon(FinderIcon::USB);
}

} // namespace krgui
