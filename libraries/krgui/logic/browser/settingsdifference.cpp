#include "logic/browser/settingsdifference.h"

#include "logic/browser/settingsvalue.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <string_view>

namespace krgui {

namespace {

using Kind = ComparedSetting::Kind;

// As restoring takes them: devices keep floating-point numbers in fewer bits.
constexpr double kFloatTolerance = 1e-6;

// What the last setting for a feature and its positions says.
struct Place {
  const KrGenSetting* setting = nullptr;
  std::string positions = {};
  std::size_t number = 0; // In the order of the settings.
};

using Places = std::unordered_map<std::string, Place>;

bool IsSameFloat(std::string_view aLeft, std::string_view aRight) {
  const std::optional<double> left = ReadSettingFloat(aLeft);
  const std::optional<double> right = ReadSettingFloat(aRight);
  if (!left || !right)
    return false;
  return *left == *right || std::abs(*left - *right) <= kFloatTolerance * std::max(std::abs(*left), std::abs(*right));
}

template <typename Value>
bool AreBoth(const std::optional<Value>& aLeft, const std::optional<Value>& aRight) {
  return aLeft && aLeft == aRight;
}

bool IsSame(KrGenType aType, const std::string& aLeft, const std::string& aRight) {
  if (aLeft == aRight)
    return true;
  switch (aType) {
  case KrGenType::Integer:
    return AreBoth(ReadSettingInteger(aLeft), ReadSettingInteger(aRight));
  case KrGenType::Boolean:
    return AreBoth(ReadSettingBoolean(aLeft), ReadSettingBoolean(aRight));
  case KrGenType::Float:
    return IsSameFloat(aLeft, aRight);
  case KrGenType::Register:
    return EqualsIgnoringCase(ReadSettingDigits(aLeft), ReadSettingDigits(aRight));
  default:
    return false;
  }
}

// The places of settings, which move the selectors among them as they go.
class PlaceFinder {
public:
  explicit PlaceFinder(const ComparedFeatures& aFeatures) : mFeatures(aFeatures) {
    for (const auto& [name, feature] : aFeatures)
      for (const std::string& selector : feature.selectors)
        mPositions[selector];
  }

  Places Find(const KrGenSettings& aSettings) {
    Places places;
    for (auto& [selector, position] : mPositions)
      position = nullptr;
    std::size_t number = 0;
    for (const KrGenSetting& setting : aSettings.GetSettings()) {
      Place place = {.setting = &setting, .positions = DescribePositions(setting.name.ToUtf8()), .number = number++};
      // A name has no line end, so that nothing else has this key.
      std::string key = setting.name.ToUtf8() + '\n' + place.positions;
      places[std::move(key)] = std::move(place);
      if (const auto selector = mPositions.find(setting.name.ToUtf8()); selector != mPositions.end())
        selector->second = &setting.value;
    }
    return places;
  }

private:
  std::string DescribePositions(const std::string& aName) const {
    std::string text;
    const auto feature = mFeatures.find(aName);
    if (feature == mFeatures.end())
      return text;
    for (const std::string& selector : feature->second.selectors) {
      if (const KrString* const position = mPositions.at(selector))
        text += (text.empty() ? "" : ", ") + selector + "=" + position->ToUtf8();
    }
    return text;
  }

  const ComparedFeatures& mFeatures;
  std::unordered_map<std::string, const KrString*> mPositions; // Of each selector; null where no setting moved it yet.
};

ComparedSetting Compare(const Place& aPlace, const KrString* aPresent, const ComparedFeature* aFeature) {
  ComparedSetting setting = {.kind = Kind::NoFeature,
                             .name = aPlace.setting->name,
                             .positions = aPlace.positions,
                             .present = aPresent ? *aPresent : KrString(),
                             .wanted = aPlace.setting->value,
                             .note = {}};
  if (!aFeature) {
    setting.note = "This device has no such feature.";
    return setting;
  }
  if (!aPresent)
    setting.kind = Kind::NoPresentValue;
  else
    setting.kind = IsSame(aFeature->type, aPresent->ToUtf8(), setting.wanted.ToUtf8()) ? Kind::Same : Kind::Different;
  if (setting.kind != Kind::Same)
    setting.note = aFeature->limit;
  return setting;
}

std::string CountOf(std::size_t aCount, std::string_view aOne, std::string_view aMany) {
  return std::to_string(aCount) + " " + std::string(aCount == 1 ? aOne : aMany);
}

} // namespace

std::size_t SettingsDifference::Count(Kind aKind) const {
  return static_cast<std::size_t>(std::count_if(
      settings.begin(), settings.end(), [aKind](const ComparedSetting& aSetting) { return aSetting.kind == aKind; }));
}

std::size_t SettingsDifference::CountChanges() const {
  return Count(Kind::Different) + Count(Kind::NoPresentValue);
}

std::string SettingsDifference::Summarize() const {
  const std::size_t different = Count(Kind::Different);
  std::string text = std::to_string(different) + " of " + CountOf(settings.size(), "setting", "settings") +
                     (different == 1 ? " differs" : " differ") + " from the file.";
  if (const std::size_t count = Count(Kind::NoPresentValue); count > 0)
    text += " " + CountOf(count, "has", "have") + " no value on the device now.";
  if (const std::size_t count = Count(Kind::NoFeature); count > 0)
    text += " " + CountOf(count, "is of a feature", "are of features") + " that this device does not have.";
  return text;
}

SettingsDifference CompareSettings(const KrGenSettings& aFile, const KrGenSettings& aPresent,
                                   const ComparedFeatures& aFeatures) {
  PlaceFinder finder(aFeatures);
  const Places present = finder.Find(aPresent);
  const Places wanted = finder.Find(aFile);
  std::vector<const Places::value_type*> order;
  for (const Places::value_type& place : wanted)
    order.push_back(&place);
  std::sort(order.begin(), order.end(), [](const Places::value_type* aLeft, const Places::value_type* aRight) {
    return aLeft->second.number < aRight->second.number;
  });
  SettingsDifference difference;
  difference.settings.reserve(order.size());
  for (const Places::value_type* const place : order) {
    const auto feature = aFeatures.find(place->second.setting->name.ToUtf8());
    const auto value = present.find(place->first);
    const KrString* now = value == present.end() ? nullptr : &value->second.setting->value;
    if (!now && feature != aFeatures.end() && feature->second.current && feature->second.selectors.empty())
      now = &*feature->second.current;
    difference.settings.push_back(Compare(place->second, now, feature == aFeatures.end() ? nullptr : &feature->second));
  }
  return difference;
}

} // namespace krgui
