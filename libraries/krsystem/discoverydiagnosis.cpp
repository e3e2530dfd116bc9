#include "krsystem/discoverydiagnosis.h"

#include "adaptercauses.h"
#include "addresscauses.h"
#include "usbcauses.h"

#include <algorithm>
#include <array>
#include <set>
#include <string>
#include <utility>

namespace krsystem {

namespace {

// What keeps a device that was seen from being used comes first, then what keeps the devices of an adapter from being
// seen, then what spoils their frames, then what is said where nothing tells why no device is there.
constexpr std::array kGravity = {
    KrFindingKind::NoTransport,        KrFindingKind::USBPermission,   KrFindingKind::AddressConflict,
    KrFindingKind::SharedMAC,          KrFindingKind::ForeignSubnet,   KrFindingKind::USBSpeed,
    KrFindingKind::NoAdapter,          KrFindingKind::NoAddress,       KrFindingKind::AdapterDown,
    KrFindingKind::NoCarrier,          KrFindingKind::SubnetNotUnique, KrFindingKind::ReversePathFilter,
    KrFindingKind::ReceiveBufferLimit, KrFindingKind::USBMemory,       KrFindingKind::NoAnswer,
};

KrFinding MakeNoTransport() {
  return {KrFindingKind::NoTransport,
          {},
          "The program installed nothing that could find a device.",
          "Its developer calls KrInstallTransports before devices are looked for."};
}

// The limits of buffers spoil frames; every other finding may be why a device is missing.
bool TellsWhyNobodyAnswers(const KrFinding& aFinding) {
  return aFinding.kind != KrFindingKind::ReceiveBufferLimit && aFinding.kind != KrFindingKind::USBMemory;
}

// A device on the bus that did not answer has power and a cable.
bool IsAnyDeviceThere(const HostReadings& aReadings, const std::vector<AnsweredDevice>& aAnswered) {
  return !aAnswered.empty() || !aReadings.usbDevices.empty();
}

// Says what can be looked at away from the host, of the kinds of connection on which devices are looked for.
KrFinding MakeNoAnswer(const HostReadings& aReadings) {
  std::string remedy = "Check that the camera has power and has ended its start.";
  if (aReadings.hasNetworkTransport)
    remedy +=
        " On the network: check that its cable is plugged in at both ends with the lamps lit, that no router lies "
        "between it and this computer, and that no firewall or switch drops UDP port 3956.";
  if (aReadings.hasUSBTransport)
    remedy += " On USB: check that its cable is one for USB 3.0 and plugged in at both ends, and try another port "
              "without a hub.";
  return {KrFindingKind::NoAnswer, {}, "No device answered.", remedy};
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
  if (!aReadings.hasNetworkTransport && !aReadings.hasUSBTransport && !aReadings.hasOtherTransport)
    findings.push_back(MakeNoTransport());
  FindAdapterCauses(aReadings, findings);
  FindAddressCauses(aReadings, aAnswered, findings);
  FindUSBCauses(aReadings, aAnswered, findings);
  if (!IsAnyDeviceThere(aReadings, aAnswered) && std::ranges::none_of(findings, TellsWhyNobodyAnswers))
    findings.push_back(MakeNoAnswer(aReadings));
  SortByGravity(findings);
  DropRepetitions(findings);
  return findings;
}

} // namespace krsystem
