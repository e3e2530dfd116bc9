#include "acquisition/keptsetting.h"

#include <algorithm>
#include <array>
#include <utility>

namespace krviewer {

namespace {

// Selectors that select one another end here.
constexpr std::size_t kMostSelectors = 8;

// Standard Features Naming Convention, and the names before it. Old descriptions do not say what is streamable.
constexpr std::array kUsualFeatures = {"Width",
                                       "Height",
                                       "OffsetX",
                                       "OffsetY",
                                       "BinningHorizontal",
                                       "BinningVertical",
                                       "DecimationHorizontal",
                                       "DecimationVertical",
                                       "ReverseX",
                                       "ReverseY",
                                       "PixelFormat",
                                       "AcquisitionMode",
                                       "AcquisitionFrameCount",
                                       "AcquisitionFrameRateEnable",
                                       "AcquisitionFrameRate",
                                       "AcquisitionFrameRateAbs",
                                       "ExposureMode",
                                       "ExposureAuto",
                                       "ExposureTime",
                                       "ExposureTimeAbs",
                                       "ExposureTimeRaw",
                                       "GainAuto",
                                       "Gain",
                                       "GainRaw",
                                       "BlackLevel",
                                       "BlackLevelRaw",
                                       "Gamma",
                                       "BalanceWhiteAuto",
                                       "TriggerMode",
                                       "TriggerSource",
                                       "TriggerActivation",
                                       "TriggerDelay",
                                       "TriggerDelayAbs"};

void AddSelectors(KrGenParameter& aParameter, std::vector<KrGenParameter*>& aSelectors) {
  KrGenParameterList selecting;
  if (!aParameter.GetSelectingParameters(selecting).IsOK())
    return;
  for (KrGenParameter* const selector : selecting) {
    if (aSelectors.size() >= kMostSelectors || std::ranges::find(aSelectors, selector) != aSelectors.end())
      continue;
    AddSelectors(*selector, aSelectors);
    if (std::ranges::find(aSelectors, selector) == aSelectors.end())
      aSelectors.push_back(selector);
  }
}

bool HasValue(const KrGenParameter& aParameter) {
  const KrGenType type = aParameter.GetType();
  return type != KrGenType::Command && type != KrGenType::Other;
}

} // namespace

std::string MakePlaceName(const KeptSetting& aSetting) {
  std::string name = aSetting.name.ToUtf8();
  for (const KrGenSetting& position : aSetting.positions)
    name += '\n' + position.name.ToUtf8() + '\t' + position.value.ToUtf8();
  return name;
}

KrString DescribePlace(const KeptSetting& aSetting) {
  KrString text;
  for (const KrGenSetting& position : aSetting.positions)
    text += position.name + "=" + position.value + ", ";
  return text + aSetting.name;
}

KrResult ReadKeptSetting(KrGenParameterArray& aParameters, KrGenParameter& aParameter, KeptSetting& aSetting) {
  std::vector<KrGenParameter*> selectors;
  AddSelectors(aParameter, selectors);
  std::erase(selectors, &aParameter);
  KeptSetting setting = {.name = aParameter.GetName(), .order = aSetting.order};
  const KrGenParameterArray::Turn turn(aParameters);
  for (KrGenParameter* const selector : selectors) {
    KrString position;
    if (KrResult read = selector->ToString(position); !read.IsOK())
      return read;
    setting.positions.push_back({selector->GetName(), position});
  }
  KrResult read = aParameter.ToString(setting.value);
  if (read.IsOK())
    aSetting = std::move(setting);
  return read;
}

std::vector<KrGenParameter*> ListKeptFeatures(const KrGenParameterArray& aParameters) {
  std::vector<KrGenParameter*> features;
  for (std::size_t index = 0; index < aParameters.GetCount(); ++index) {
    bool isStreamable = false;
    KrGenParameter* const parameter = aParameters[index];
    if (HasValue(*parameter) && parameter->IsStreamable(isStreamable).IsOK() && isStreamable)
      features.push_back(parameter);
  }
  if (!features.empty())
    return features;
  for (const char* const name : kUsualFeatures)
    if (KrGenParameter* const parameter = aParameters.Get(name); parameter && HasValue(*parameter))
      features.push_back(parameter);
  return features;
}

} // namespace krviewer
