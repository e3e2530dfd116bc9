#include "listcommand.h"

#include "devicetable.h"

namespace krtool {

int RunList(KrSystem& aSystem, const CommandLine& aCommandLine, std::ostream& aOut, std::ostream& aErrors) {
  if (aCommandLine.timeoutMs)
    aSystem.SetDetectionTimeout(*aCommandLine.timeoutMs);
  if (KrResult found = aSystem.Find(); !found.IsOK()) {
    aErrors << "krtool: looking for devices failed: " << found.GetDescription().CStr() << '\n';
    return 1;
  }
  aOut << (aCommandLine.json ? FormatJson(aSystem) : FormatTable(aSystem));
  return 0;
}

} // namespace krtool
