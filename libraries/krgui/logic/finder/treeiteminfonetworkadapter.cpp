#include "logic/finder/treeiteminfonetworkadapter.h"

#include "logic/finder/networkrows.h"
#include "logic/finder/subnetrule.h"

#include <string>

namespace krgui {

namespace {

enum class AddressState { Good, Missing, Doubtful };

// Whether addresses are set is read from the first pair, however many there are.
AddressState GetAddressState(InterfaceSpan aAll, const KrNetworkAdapter& aAdapter) {
  bool areAddressesSet = true;
  bool areMasksSet = true;
  bool isAnyNotUnique = false;
  for (std::size_t i = 0; i < aAdapter.GetIPAddressCount(); ++i) {
    areAddressesSet = areAddressesSet && aAdapter.GetIPAddress(0) != kNoAddress;
    areMasksSet = areMasksSet && aAdapter.GetSubnetMask(0) != kNoAddress;
    isAnyNotUnique = isAnyNotUnique || !IsSubnetUnique(aAll, aAdapter, i);
  }
  if (!areAddressesSet)
    return AddressState::Missing;
  return !areMasksSet || isAnyNotUnique ? AddressState::Doubtful : AddressState::Good;
}

} // namespace

void TreeItemInfoNetworkAdapter::FillInfo(InterfaceSpan aAll, const KrInterface& aInterface) {
  mRows.clear();
  const auto* const adapter = dynamic_cast<const KrNetworkAdapter*>(&aInterface);
  if (!adapter)
    return;
  AddRow("Description", adapter->GetDescription());
  AddRow("MAC", adapter->GetMACAddress());
  for (std::size_t i = 0; i < adapter->GetIPAddressCount(); ++i)
    AddAddressRows(aAll, *adapter, i);
  AddRow("Default Gateway", adapter->GetDefaultGateway());
}

void TreeItemInfoNetworkAdapter::AddAddressRows(InterfaceSpan aAll, const KrNetworkAdapter& aAdapter,
                                                std::size_t aIndex) {
  const bool isUnique = IsSubnetUnique(aAll, aAdapter, aIndex);
  const std::string number = aAdapter.GetIPAddressCount() == 1 ? "" : " " + std::to_string(aIndex);
  KrString address = aAdapter.GetIPAddress(aIndex);
  // The address decides the mask's colour too.
  const RowColour colour = address == kNoAddress ? kWrongRowColour : isUnique ? kGoodRowColour : kSuspiciousRowColour;
  if (!isUnique)
    address += ": subnet not unique";
  AddRow(("IP Address" + number).c_str(), address, colour);
  AddRow(("Subnet Mask" + number).c_str(), aAdapter.GetSubnetMask(aIndex), colour);
}

void TreeItemInfoNetworkAdapter::UpdateIcon(InterfaceSpan aAll, const KrInterface& aInterface) {
  const auto* const adapter = dynamic_cast<const KrNetworkAdapter*>(&aInterface);
  if (!adapter)
    return;
  const bool hasDriver = adapter->IsTolvanDriverInstalled();
  switch (GetAddressState(aAll, *adapter)) {
  case AddressState::Missing:
    return SetIcon(hasDriver ? FinderIcon::AdapterWithDriverWithoutAddress : FinderIcon::AdapterWithoutAddress);
  case AddressState::Doubtful:
    return SetIcon(hasDriver ? FinderIcon::AdapterWithDriverDoubtful : FinderIcon::AdapterDoubtful);
  case AddressState::Good:
    return SetIcon(hasDriver ? FinderIcon::AdapterWithDriver : FinderIcon::Adapter);
  }
}

} // namespace krgui
