#include "acquisition/expectedframes.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <string>

namespace krviewer {

namespace {

/// Beyond this no exposure is meant.
constexpr double kLongestMs = 24.0 * 3600 * 1000;
constexpr double kMicrosecondMs = 1e-3;
constexpr double kSecondMs = 1e3;

const KeptSetting* Find(const std::vector<KeptSetting>& aSettings, const char* aName) {
  const auto found = std::ranges::find(aSettings, KrString(aName), &KeptSetting::name);
  return found != aSettings.end() ? &*found : nullptr;
}

// 0 for what is no number.
double GetNumber(const KeptSetting* aSetting) {
  const std::string text = aSetting ? aSetting->value.ToUtf8() : std::string();
  double value = 0;
  const auto end = std::from_chars(text.data(), text.data() + text.size(), value).ec;
  return end == std::errc() && std::isfinite(value) ? value : 0;
}

// The names before the standard's go on being used.
double GetFirstNumber(const std::vector<KeptSetting>& aSettings, std::initializer_list<const char*> aNames) {
  for (const char* const name : aNames)
    if (const double value = GetNumber(Find(aSettings, name)); value > 0)
      return value;
  return 0;
}

bool IsOff(const std::vector<KeptSetting>& aSettings, const char* aName) {
  const KeptSetting* const setting = Find(aSettings, aName);
  return setting &&
         (setting->value == KrString("0") || setting->value == KrString("false") || setting->value == KrString("Off"));
}

KrString FindTrigger(const std::vector<KeptSetting>& aSettings) {
  for (const KeptSetting& mode : aSettings) {
    if (mode.name != KrString("TriggerMode") || mode.value != KrString("On"))
      continue;
    for (const KeptSetting& source : aSettings)
      if (source.name == KrString("TriggerSource") && source.positions == mode.positions)
        return source.value;
    return "of a source that is not known";
  }
  return {};
}

std::uint64_t FindIntervalMs(const std::vector<KeptSetting>& aSettings) {
  double intervalMs = GetFirstNumber(aSettings, {"ExposureTime", "ExposureTimeAbs"}) * kMicrosecondMs;
  const bool isFree = IsOff(aSettings, "AcquisitionFrameRateEnable") || IsOff(aSettings, "AcquisitionFrameRateMode");
  if (const double rate = GetFirstNumber(aSettings, {"AcquisitionFrameRate", "AcquisitionFrameRateAbs"});
      rate > 0 && !isFree)
    intervalMs = std::max(intervalMs, kSecondMs / rate);
  return static_cast<std::uint64_t>(std::min(intervalMs, kLongestMs));
}

} // namespace

ExpectedFrames ExpectFrames(const std::vector<KeptSetting>& aSettings) {
  return {.trigger = FindTrigger(aSettings), .intervalMs = FindIntervalMs(aSettings)};
}

bool IsSoftwareTrigger(const KrString& aSource) {
  return aSource.ToUtf8().starts_with("Software") || aSource == KrString("Any");
}

} // namespace krviewer
