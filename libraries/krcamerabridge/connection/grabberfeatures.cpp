#include "connection/grabberfeatures.h"

#include <algorithm>
#include <array>

namespace krcamerabridge {

namespace {

constexpr std::array<const char*, 2> kPoCLSwitches = {"PoclEnable", "PoCLEnable"};

} // namespace

KrResult CheckSource(IKrDeviceAdapter& aAdapter, const KrString& aSource) {
  const KrString attempt = "Choosing the source \"" + aSource + "\": ";
  KrStringList entries;
  const KrResult result = aAdapter.GetEnumEntries(kSourceSelector, entries);
  if (result == KrResult::Code::NotFound || result == KrResult::Code::NotSupported)
    return {KrResult::Code::InvalidInput, attempt + "the device has no sources to choose from."};
  if (!result.IsOK())
    return {result.GetCode(), attempt + result.GetDescription()};
  if (std::find(entries.begin(), entries.end(), aSource) == entries.end())
    return {KrResult::Code::InvalidInput, attempt + "the device has no source of that name."};
  return {};
}

KrString FindPoCLSwitch(IKrDeviceAdapter& aAdapter) {
  const auto* const found =
      std::ranges::find_if(kPoCLSwitches, [&](const char* aName) { return aAdapter.HasParameter(aName); });
  return found == kPoCLSwitches.end() ? KrString() : KrString(*found);
}

KrResult ExplainSilence(const KrResult& aFailure, IKrDeviceAdapter& aAdapter) {
  if (aFailure != KrResult::Code::TimeLimitExceeded && aFailure != KrResult::Code::NotFound)
    return aFailure;
  const KrString name = FindPoCLSwitch(aAdapter);
  bool isOn = false;
  if (name.IsEmpty() || !aAdapter.GetBooleanValue(name, isOn).IsOK() || isOn)
    return aFailure;
  return {aFailure.GetCode(), aFailure.GetDescription() + " Power over Camera Link is off; the camera may need it."};
}

} // namespace krcamerabridge
