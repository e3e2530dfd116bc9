#include "listcommand.h"

#include "accessquery.h"
#include "camerasession.h"
#include "devicejson.h"
#include "devicetable.h"
#include "diagnosistext.h"
#include "watchcommand.h"

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
  return 0;
}

} // namespace krtool
