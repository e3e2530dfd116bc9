// Whatever a settings file and a device may have: compared they give each setting of the file once at most, with what
// it is and where, and a file does not differ from itself.
//
// The input is a line for each setting: its first character says of which type the feature is and whose setting it is;
// then come its name, a tab and its value. The first enumerations are selectors of all other features.

#include "logic/browser/settingsdifference.h"
#include "logic/browser/settingsproblem.h"
#include "logic/browser/settingsvalue.h"
#include "require.h"

#include <algorithm>
#include <cstdint>
#include <set>
#include <string>
#include <string_view>

namespace {

using namespace krgui;

using Kind = ComparedSetting::Kind;

constexpr std::size_t kMostBytes = 8192; // Longer ones show the same.
constexpr std::size_t kMostSelectors = 3;
constexpr std::uint8_t kNoFeature = 0x70; // From here on the device does not have it.

struct Input {
  KrGenSettings file;
  KrGenSettings present;
  ComparedFeatures features;
};

Input Read(std::string_view aText) {
  constexpr KrGenType kTypes[] = {KrGenType::Integer,  KrGenType::Boolean, KrGenType::Float,
                                  KrGenType::Register, KrGenType::String,  KrGenType::Enumeration};
  Input input;
  std::vector<std::string> selectors;
  while (!aText.empty()) {
    const std::string_view line = aText.substr(0, aText.find('\n'));
    aText.remove_prefix(std::min(line.size() + 1, aText.size()));
    const std::size_t tab = line.find('\t');
    if (line.empty() || tab == line.npos || tab == 0)
      continue;
    const auto choice = static_cast<std::uint8_t>(line[0]);
    const std::string name(line.substr(1, tab - 1));
    const KrGenType type = kTypes[choice % std::size(kTypes)];
    const std::size_t owner =
        choice / std::size(kTypes) % 4; // Both, the file, the device, or the device's feature alone.
    if (owner <= 1)
      input.file.Add(name, line.substr(tab + 1));
    if (owner % 2 == 0)
      input.present.Add(name, line.substr(tab + 1));
    if (choice >= kNoFeature)
      continue;
    if (type == KrGenType::Enumeration && selectors.size() < kMostSelectors && !input.features.contains(name))
      selectors.push_back(name);
    input.features[name].type = type;
  }
  for (auto& [name, feature] : input.features)
    if (std::ranges::find(selectors, name) == selectors.end())
      feature.selectors = selectors;
  return input;
}

void CheckKinds(const SettingsDifference& aDifference, const Input& aInput) {
  Require(aDifference.settings.size() <= aInput.file.GetCount());
  Require(aDifference.CountChanges() <= aDifference.settings.size());
  Require(!aDifference.Summarize().empty());
  std::size_t counted = 0;
  for (const Kind kind : {Kind::Same, Kind::Different, Kind::NoPresentValue, Kind::NoFeature})
    counted += aDifference.Count(kind);
  Require(counted == aDifference.settings.size());
  std::set<std::pair<KrString, KrString>> places;
  for (const ComparedSetting& setting : aDifference.settings) {
    Require(places.emplace(setting.name, setting.positions).second);
    const bool isFeature = aInput.features.contains(setting.name.ToUtf8());
    Require(isFeature == (setting.kind != Kind::NoFeature));
    Require(setting.kind != Kind::NoPresentValue || setting.present.IsEmpty());
  }
}

void CheckValue(const std::string& aText) {
  if (const auto integer = ReadSettingInteger(aText))
    Require(ReadSettingInteger(std::to_string(*integer)) == integer);
  Require(EqualsIgnoringCase(aText, aText) && aText.ends_with(ReadSettingDigits(aText)));
}

void CheckProblems(const KrGenSettings& aSettings) {
  KrStringList problems;
  for (const KrGenSetting& setting : aSettings.GetSettings())
    problems.Add(setting.name + ": " + setting.value);
  const std::vector<SettingsProblem> parts = PartSettingsProblems(problems);
  Require(parts.size() == problems.GetCount());
  for (std::size_t i = 0; i < parts.size(); ++i)
    Require(parts[i].feature.size() + parts[i].reason.size() <= problems[i].GetLength());
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* aData, std::size_t aSize) {
  if (aSize > kMostBytes)
    return 0;
  const Input input = Read({reinterpret_cast<const char*>(aData), aSize});
  CheckKinds(CompareSettings(input.file, input.present, input.features), input);
  const SettingsDifference none = CompareSettings(input.file, input.file, input.features);
  CheckKinds(none, input);
  Require(none.Count(Kind::Different) == 0 && none.Count(Kind::NoPresentValue) == 0);
  for (const KrGenSetting& setting : input.file.GetSettings())
    CheckValue(setting.value.ToUtf8());
  CheckProblems(input.file);
  return 0;
}
