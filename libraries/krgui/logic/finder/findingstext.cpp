#include "logic/finder/findingstext.h"

#include <string>

namespace krgui {

namespace {

std::string FormatFinding(const KrFinding& aFinding) {
  std::string text = KrGetFindingSentence(aFinding).ToUtf8() + "\n";
  if (!aFinding.remedy.IsEmpty())
    text += aFinding.remedy.ToUtf8() + "\n";
  return text;
}

} // namespace

KrString FormatFindings(std::span<const KrFinding> aFindings) {
  if (aFindings.empty())
    return "No reason was found on this computer.\n\n"
           "Look at the camera: whether it has power, and whether the lamps of its plug are lit. On the network, "
           "see that no firewall or switch drops UDP port 3956.\n";
  std::string text;
  for (const KrFinding& finding : aFindings)
    text += (text.empty() ? "" : "\n") + FormatFinding(finding);
  return KrString(text);
}

KrString FormatDiagnosisFailure(const KrResult& aResult) {
  const KrString& reason = aResult.GetDescription();
  return "The reasons could not be looked for: " + (reason.IsEmpty() ? aResult.GetCodeString() : reason) + "\n";
}

} // namespace krgui
