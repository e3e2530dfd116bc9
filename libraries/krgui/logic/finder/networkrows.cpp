#include "logic/finder/networkrows.h"

#include "krsystem/krinterface.h"

namespace krgui {

namespace {

bool IsMaskOf(const KrInterface* aOwner, const KrString& aMask) {
  const auto* const adapter = dynamic_cast<const KrNetworkAdapter*>(aOwner);
  for (std::size_t i = 0; adapter && i < adapter->GetIPAddressCount(); ++i) {
    if (adapter->GetSubnetMask(i) == aMask)
      return true;
  }
  return false;
}

RowColour GetColour(bool aIsGood) {
  return aIsGood ? kGoodRowColour : kSuspiciousRowColour;
}

} // namespace

std::vector<InfoRow> MakeNetworkRows(const KrInterface* aOwner, const krsystem::NetworkFields& aFields) {
  const bool isMaskGood = aFields.subnetMask != kNoAddress && IsMaskOf(aOwner, aFields.subnetMask);
  return {{"MAC", aFields.macAddress},
          {"IP", aFields.ipAddress, GetColour(aFields.ipAddress != kNoAddress)},
          {"Subnet Mask", aFields.subnetMask, GetColour(isMaskGood)},
          {"Default Gateway", aFields.defaultGateway}};
}

} // namespace krgui
