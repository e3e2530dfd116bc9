#include "logic/browser/settingsobstacle.h"

#include "krbase/trim.h"
#include "krgenicam/krgenenum.h"
#include "krgenicam/krgenfloat.h"
#include "krgenicam/krgeninteger.h"
#include "krgenicam/krgenstring.h"
#include "logic/browser/settingsvalue.h"

#include <cmath>
#include <cstdint>
#include <optional>
#include <string_view>
#include <unordered_map>
#include <utility>

namespace krgui {

namespace {

using Kind = ComparedSetting::Kind;

// The device's own limits, which other settings of the file may move.
template <typename Value, typename Feature>
std::string FindLimit(Feature& aFeature, Value aValue) {
  Value min = 0;
  Value max = 0;
  if (aFeature.GetMin(min).IsOK() && aValue < min)
    return "It is below the minimum of the moment.";
  if (aFeature.GetMax(max).IsOK() && aValue > max)
    return "It is above the maximum of the moment.";
  return {};
}

std::string FindIntegerObstacle(KrGenInteger& aInteger, std::string_view aText, bool aIsSelected) {
  const std::optional<std::int64_t> value = ReadSettingInteger(aText);
  if (value)
    return aIsSelected ? std::string() : FindLimit(aInteger, *value);
  // Restoring takes a whole number with a point or an exponent, too.
  const std::optional<double> number = ReadSettingFloat(aText);
  constexpr double kEnd = 9223372036854775808.0;
  const bool isWhole = number && std::trunc(*number) == *number && *number >= -kEnd && *number < kEnd;
  return isWhole ? "" : "The value is no whole number of 64 bits.";
}

std::string FindFloatObstacle(KrGenFloat& aFloat, std::string_view aText, bool aIsSelected) {
  std::optional<double> value = ReadSettingFloat(aText);
  if (const std::optional<std::int64_t> whole = ReadSettingInteger(aText); whole && !value)
    value = static_cast<double>(*whole);
  if (!value || std::isnan(*value))
    return "The value is no number.";
  return aIsSelected ? std::string() : FindLimit(aFloat, *value);
}

std::string FindEntryObstacle(KrGenEnum& aEnum, const KrString& aText) {
  KrGenEnumEntry* entry = nullptr;
  const bool isName = aEnum.GetEntryByName(aText, entry).IsOK();
  const std::optional<std::int64_t> number = ReadSettingInteger(krbase::Trim(aText.ToUtf8()));
  if (!isName && !number)
    return "There is no entry of this name.";
  if (!isName && !aEnum.GetEntryByValue(*number, entry).IsOK())
    return "There is no entry of this number.";
  bool isAvailable = true;
  return entry->IsAvailable(isAvailable).IsOK() && !isAvailable ? "The entry is not available at the moment." : "";
}

std::string FindTextObstacle(KrGenString& aString, const KrString& aText) {
  std::int64_t most = 0;
  const bool isKnown = aString.GetMaxLength(most).IsOK() && most >= 0;
  return isKnown && aText.ToUtf8().size() > static_cast<std::uint64_t>(most)
             ? "It is longer than " + std::to_string(most) + " bytes, the most that is taken."
             : "";
}

std::string FindBytesObstacle(std::string_view aText) {
  const std::string_view digits = ReadSettingDigits(aText);
  const bool areDigits = digits.find_first_not_of("0123456789abcdefABCDEF") == digits.npos;
  return areDigits && digits.size() % 2 == 0 ? "" : "The value is not made of two hexadecimal digits for each byte.";
}

void AddNote(KrString& aNote, const std::string& aText) {
  if (!aText.empty())
    aNote = aNote.IsEmpty() ? KrString(aText) : aNote + " " + KrString(aText);
}

// By "selector=position", of all positions that the file moves selectors to and that cannot be had.
class PositionObstacles {
public:
  PositionObstacles(const KrGenSettings& aFile, KrGenParameterArray& aArray, const ComparedFeatures& aFeatures) {
    std::unordered_map<std::string, KrGenParameter*> selectors;
    for (const auto& [name, feature] : aFeatures)
      for (const std::string& selector : feature.selectors)
        selectors.try_emplace(selector, aArray.Get(selector));
    for (const KrGenSetting& setting : aFile.GetSettings()) {
      const auto selector = selectors.find(setting.name.ToUtf8());
      if (selector == selectors.end() || !selector->second)
        continue;
      const auto feature = aFeatures.find(selector->first);
      const bool isSelected = feature != aFeatures.end() && !feature->second.selectors.empty();
      const auto [place, isNew] = mObstacles.try_emplace(selector->first + "=" + setting.value.ToUtf8());
      if (isNew)
        place->second = FindObstacle(*selector->second, setting.value, isSelected);
    }
  }

  /// aPositions as ComparedSetting has them.
  std::string Find(std::string_view aPositions) const {
    constexpr std::string_view kBetween = ", ";
    while (!aPositions.empty()) {
      const std::size_t end = aPositions.find(kBetween);
      const std::string position(aPositions.substr(0, end));
      const auto obstacle = mObstacles.find(position);
      if (obstacle != mObstacles.end() && !obstacle->second.empty())
        return position + ": " + obstacle->second;
      aPositions.remove_prefix(end == aPositions.npos ? aPositions.size() : end + kBetween.size());
    }
    return {};
  }

private:
  std::unordered_map<std::string, std::string> mObstacles;
};

} // namespace

std::string FindObstacle(KrGenParameter& aParameter, const KrString& aValue, bool aIsSelected) {
  const std::string_view text = krbase::Trim(aValue.ToUtf8());
  if (auto* const integer = dynamic_cast<KrGenInteger*>(&aParameter))
    return FindIntegerObstacle(*integer, text, aIsSelected);
  if (auto* const number = dynamic_cast<KrGenFloat*>(&aParameter))
    return FindFloatObstacle(*number, text, aIsSelected);
  if (auto* const enumeration = dynamic_cast<KrGenEnum*>(&aParameter))
    return FindEntryObstacle(*enumeration, aValue);
  if (auto* const string = dynamic_cast<KrGenString*>(&aParameter))
    return FindTextObstacle(*string, aValue);
  switch (aParameter.GetType()) {
  case KrGenType::Boolean:
    return ReadSettingBoolean(text) ? "" : "The value is none of 1, 0, true and false.";
  case KrGenType::Register:
    return FindBytesObstacle(text);
  default:
    return "It has no value that can be set.";
  }
}

void NoteObstacles(SettingsDifference& aDifference, const KrGenSettings& aFile, KrGenParameterArray& aArray,
                   const ComparedFeatures& aFeatures, const KrGenProgress& aProgress) {
  const PositionObstacles positions(aFile, aArray, aFeatures);
  for (ComparedSetting& setting : aDifference.settings) {
    KrGenParameter* const parameter = aArray.Get(setting.name);
    if (setting.kind == Kind::Same || !parameter)
      continue;
    if (!aProgress(0, 0))
      return;
    const auto feature = aFeatures.find(setting.name.ToUtf8());
    const bool isSelected = feature != aFeatures.end() && !feature->second.selectors.empty();
    AddNote(setting.note, positions.Find(setting.positions.ToUtf8()));
    AddNote(setting.note, FindObstacle(*parameter, setting.wanted, isSelected));
  }
}

} // namespace krgui
