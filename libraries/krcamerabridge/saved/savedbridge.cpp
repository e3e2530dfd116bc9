#include "saved/savedbridge.h"

#include <algorithm>
#include <string>
#include <string_view>

namespace krcamerabridge {

namespace {

constexpr const char* kWay = "Way";
constexpr const char* kSource = "Source";
constexpr const char* kSync = "ParametersSync";
constexpr std::string_view kFeature = "Feature.";

class Restorer {
public:
  Restorer(const KrPropertyList& aProperties, KrStringList& aErrors) : mProperties(aProperties), mErrors(aErrors) {}

  void ReadChoice(CameraChoice& aChoice) {
    const KrProperty* const word = Find(kWay);
    if (!word)
      return;
    const auto ways = GetCameraWays();
    const auto way = std::ranges::find(ways, std::string_view(word->GetValue().ToUtf8()), &CameraWay::word);
    if (way == ways.end()) {
      Tell("The way \"" + word->GetValue() + "\" to the camera is not known.");
      return;
    }
    for (const CameraWay::Key& key : (*way)->keys) {
      const KrProperty* const text = Find(key.name);
      if (!text)
        return;
      if (text->GetValue().IsEmpty()) {
        Tell(KrString("The property \"") + key.name + "\" is empty.");
        return;
      }
      aChoice.*key.text = text->GetValue();
    }
    aChoice.way = *way;
  }

  void ReadSource(KrString& aSource) {
    if (const KrProperty* const source = Find(kSource))
      aSource = source->GetValue();
  }

  void ReadSync(std::optional<bool>& aIsOn) {
    const KrProperty* const sync = Find(kSync);
    if (!sync)
      return;
    const std::string word = sync->GetValue().ToUtf8();
    if (word == "0" || word == "1")
      aIsOn = word == "1";
    else
      Tell(KrString("The property \"") + kSync + "\" is neither 0 nor 1, but \"" + sync->GetValue() + "\".");
  }

  void ReadSettings(KrGenSettings& aSettings) {
    for (const KrProperty& property : mProperties) {
      const std::string name = property.GetName().ToUtf8();
      if (!name.starts_with(kFeature))
        continue;
      if (name.size() == kFeature.size())
        Tell("The value \"" + property.GetValue() + "\" is that of no feature.");
      else
        aSettings.Add(name.substr(kFeature.size()), property.GetValue());
    }
  }

  const KrResult& GetFirst() const { return mFirst; }

private:
  const KrProperty* Find(const char* aName) {
    const KrProperty* const property = mProperties.GetProperty(aName);
    if (!property)
      Tell(KrString("The property \"") + aName + "\" is missing.");
    return property;
  }

  void Tell(const KrString& aError) {
    mErrors.Add(aError);
    if (mFirst.IsOK())
      mFirst = KrResult(KrResult::Code::BadData, aError);
  }

  const KrPropertyList& mProperties;
  KrStringList& mErrors;
  KrResult mFirst;
};

} // namespace

KrPropertyList StoreBridge(const SavedBridge& aBridge) {
  KrPropertyList properties;
  properties.Add({kWay, KrString(aBridge.choice.way->word)});
  for (const CameraWay::Key& key : aBridge.choice.way->keys)
    properties.Add({key.name, aBridge.choice.*key.text});
  properties.Add({kSource, aBridge.source});
  properties.Add({kSync, aBridge.isSyncOn.value_or(false) ? 1 : 0});
  for (const KrGenSetting& setting : aBridge.settings.GetSettings())
    properties.Add({KrString(kFeature) + setting.name, setting.value});
  return properties;
}

KrResult RestoreBridge(const KrPropertyList& aProperties, SavedBridge& aBridge, KrStringList& aErrors) {
  Restorer restorer(aProperties, aErrors);
  restorer.ReadChoice(aBridge.choice);
  restorer.ReadSource(aBridge.source);
  restorer.ReadSync(aBridge.isSyncOn);
  restorer.ReadSettings(aBridge.settings);
  return restorer.GetFirst();
}

} // namespace krcamerabridge
