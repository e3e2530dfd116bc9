#include "listcommand.h"

#include "accessquery.h"
#include "camerasession.h"
#include "devicejson.h"
#include "devicetable.h"
#include "diagnosistext.h"
#include "krsystem/transportregistry.h"
#include "watchcommand.h"

#include <variant>
#include <vector>

namespace krtool {

namespace {

// Tells a script that there is something to do from a command that failed.
constexpr int kHasFindings = 3;

int Diagnose(KrSystem& aSystem, const CommandLine& aCommandLine, std::ostream& aOut, std::ostream& aErrors) {
  std::vector<KrFinding> findings;
  if (KrResult diagnosed = aSystem.Diagnose(findings); !diagnosed.IsOK())
    return Fail(aErrors, Explain("looking for reasons failed", diagnosed));
  aOut << (aCommandLine.json ? FormatFindingsJson(findings) : FormatFindings(findings));
  return findings.empty() ? 0 : kHasFindings;
}

KrString GetName(const krsystem::NetworkAdapterFields& aAdapter) {
  return aAdapter.name.IsEmpty() ? aAdapter.uniqueID : aAdapter.name;
}

KrString GetName(const krsystem::USBHostControllerFields& aController) {
  return aController.displayID;
}

// Those, too, that the system lists only once a device has answered there.
std::vector<KrString> ListAsked() {
  std::vector<KrString> names;
  for (const std::shared_ptr<krsystem::ITransport>& transport : krsystem::GetTransports()) {
    std::vector<krsystem::InterfaceFields> interfaces;
    if (!transport->ListInterfaces(interfaces).IsOK())
      continue; // Discovery has logged it.
    for (const krsystem::InterfaceFields& interface : interfaces)
      names.push_back(std::visit([](const auto& aKind) { return GetName(aKind); }, interface));
  }
  return names;
}

} // namespace

int RunList(KrSystem& aSystem, const CommandLine& aCommandLine, std::ostream& aOut, std::ostream& aErrors) {
  if (aCommandLine.watch)
    return RunWatch(aSystem, aCommandLine, aOut, aErrors);
  if (aCommandLine.timeoutMs)
    aSystem.SetDetectionTimeout(*aCommandLine.timeoutMs);
  const KrResult found = aSystem.Find();
  // Discovery that fails has reasons, too.
  if (aCommandLine.diagnose)
    return Diagnose(aSystem, aCommandLine, aOut, aErrors);
  if (!found.IsOK())
    return Fail(aErrors, Explain("looking for devices failed", found));
  const AccessTypes access = AskAccessTypes(aSystem);
  aOut << (aCommandLine.json ? FormatJson(aSystem, access) : FormatTable(aSystem, access));
  if (!aCommandLine.json && aSystem.GetDeviceCount() == 0)
    aOut << FormatNoDevices(ListAsked(), aCommandLine.simulate);
  return 0;
}

} // namespace krtool
