#include "krsystem/discoverydiagnosis.h"

#include "adaptercauses.h"
#include "addresscauses.h"
#include "usbcauses.h"

#include <algorithm>
#include <array>
#include <set>
#include <utility>

namespace krsystem {

namespace {

// What keeps a device that was seen from being used comes first, then what keeps the devices of an adapter from being
// seen, then what spoils their frames.
constexpr std::array kGravity = {
    KrFindingKind::NoTransport,     KrFindingKind::USBPermission,     KrFindingKind::AddressConflict,
    KrFindingKind::SharedMAC,       KrFindingKind::ForeignSubnet,     KrFindingKind::USBSpeed,
    KrFindingKind::NoAddress,       KrFindingKind::AdapterDown,       KrFindingKind::NoCarrier,
    KrFindingKind::SubnetNotUnique, KrFindingKind::ReversePathFilter, KrFindingKind::ReceiveBufferLimit,
    KrFindingKind::USBMemory,
};

KrFinding MakeNoTransport() {
  return {KrFindingKind::NoTransport,
          {},
          "The program installed nothing that could find a device.",
          "Its developer calls KrInstallTransports before devices are looked for."};
}

// In each kind the order stays.
void SortByGravity(std::vector<KrFinding>& aFindings) {
  const auto getPlace = [](const KrFinding& aFinding) { return std::ranges::find(kGravity, aFinding.kind); };
  std::ranges::stable_sort(aFindings, {}, getPlace);
}

void DropRepetitions(std::vector<KrFinding>& aFindings) {
  std::vector<KrFinding> once;
  std::set<std::pair<KrFindingKind, KrString>> told;
  for (KrFinding& finding : aFindings) {
    if (told.emplace(finding.kind, finding.text).second)
      once.push_back(std::move(finding));
  }
  aFindings = std::move(once);
}

} // namespace

std::vector<KrFinding> FindCauses(const HostReadings& aReadings, const std::vector<AnsweredDevice>& aAnswered) {
  std::vector<KrFinding> findings;
  if (!aReadings.hasNetworkTransport && !aReadings.hasUSBTransport)
    findings.push_back(MakeNoTransport());
  FindAdapterCauses(aReadings, findings);
  FindAddressCauses(aReadings, aAnswered, findings);
  FindUSBCauses(aReadings, aAnswered, findings);
  SortByGravity(findings);
  DropRepetitions(findings);
  return findings;
}

} // namespace krsystem
