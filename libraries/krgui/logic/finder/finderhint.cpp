#include "logic/finder/finderhint.h"

#include <string>

namespace krgui {

KrString FindFinderHint(const FinderHintFacts& aFacts) {
  if (!aFacts.hasTransports && !aFacts.showsDevices)
    return "No transports are installed, so that no device can be found. The program chooses them with "
           "KrInstallTransports.";
  // Also beside devices, which will not vanish any more when they fall silent.
  if (!aFacts.failure.IsEmpty())
    return aFacts.failure;
  if (aFacts.showsDevices)
    return {};
  if (aFacts.unreachableCount == 1)
    return "One device answers that this computer cannot reach as it is configured. "
           "\"Show unreachable Network Devices\" shows it.";
  if (aFacts.unreachableCount > 1)
    return KrString(std::to_string(aFacts.unreachableCount) +
                    " devices answer that this computer cannot reach as they are configured. "
                    "\"Show unreachable Network Devices\" shows them.");
  return aFacts.roundCount == 0 ? "Looking for devices…" : "No device has answered yet. Still looking…";
}

} // namespace krgui
