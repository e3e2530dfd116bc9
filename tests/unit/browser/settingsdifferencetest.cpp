#include "logic/browser/settingsdifference.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <utility>

namespace krgui {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using Kind = ComparedSetting::Kind;

using Steps = std::vector<std::pair<std::string, std::string>>;

KrGenSettings MakeSettings(const Steps& aSteps) {
  KrGenSettings settings;
  for (const auto& [name, value] : aSteps)
    settings.Add(name, value);
  return settings;
}

const ComparedFeatures kFeatures = {
    {"Width", {.type = KrGenType::Integer}},
    {"Rate", {.type = KrGenType::Float}},
    {"Reverse", {.type = KrGenType::Boolean}},
    {"Mode", {.type = KrGenType::Enumeration}},
    {"Label", {.type = KrGenType::String}},
    {"Bytes", {.type = KrGenType::Register}},
    {"Locked", {.type = KrGenType::Integer, .limit = "Locked by TLParamsLocked (1)."}},
    {"Bank", {.type = KrGenType::Enumeration}},
    {"Channel", {.type = KrGenType::Enumeration, .selectors = {"Bank"}}},
    {"Gain", {.type = KrGenType::Float, .selectors = {"Bank", "Channel"}}},
};

SettingsDifference Compare(const Steps& aFile, const Steps& aPresent) {
  return CompareSettings(MakeSettings(aFile), MakeSettings(aPresent), kFeatures);
}

std::vector<std::string> Describe(const SettingsDifference& aDifference) {
  constexpr const char* kNames[] = {"same", "different", "no value", "no feature"};
  std::vector<std::string> texts;
  for (const ComparedSetting& setting : aDifference.settings)
    texts.push_back(setting.name.ToUtf8() + "[" + setting.positions.ToUtf8() + "] " + setting.present.ToUtf8() + "->" +
                    setting.wanted.ToUtf8() + " " + kNames[static_cast<std::size_t>(setting.kind)]);
  return texts;
}

} // namespace

TEST(SettingsDifference, Values_OfEachType_AreComparedAsTheyAreMeant) {
  struct {
    const char* what;
    const char* name;
    const char* wanted;
    const char* present;
    bool isSame;
  } constexpr kRows[] = {
      {"equal texts", "Label", "abc", "abc", true},
      {"texts in another case", "Label", "abc", "ABC", false},
      {"texts that are numbers", "Label", "1.0", "1", false},
      {"an empty text", "Label", "", "", true},
      {"a hexadecimal integer", "Width", "0x10", "16", true},
      {"a hexadecimal integer with all bits", "Width", "0xFFFFFFFFFFFFFFFF", "-1", true},
      {"an integer with a sign", "Width", "+16", "16", true},
      {"other integers", "Width", "17", "16", false},
      {"an integer that is none", "Width", "wide", "16", false},
      {"both no integers", "Width", "wide", "broad", false},
      {"the ends of 64 bits", "Width", "9223372036854775807", "9223372036854775806", false},
      {"a number in other digits", "Rate", "1.50", "1.5", true},
      {"a number in single precision", "Rate", "0.1", "0.100000001490116", true},
      {"a number further off", "Rate", "0.1", "0.10001", false},
      {"zero and nearly zero", "Rate", "0", "1e-9", false},
      {"a number that is none", "Rate", "fast", "1", false},
      {"a boolean as a word", "Reverse", "True", "1", true},
      {"other booleans", "Reverse", "false", "1", false},
      {"entries", "Mode", "On", "Off", false},
      {"entries in another case", "Mode", "on", "On", false},
      {"bytes in another case", "Bytes", "0aff", "0AFF", true},
      {"bytes with a prefix", "Bytes", "0x0AFF", "0AFF", true},
      {"other bytes", "Bytes", "0AFE", "0AFF", false},
  };

  for (const auto& row : kRows) {
    const SettingsDifference difference = Compare({{row.name, row.wanted}}, {{row.name, row.present}});
    ASSERT_EQ(difference.settings.size(), 1U) << row.what;
    EXPECT_EQ(difference.settings[0].kind, row.isSame ? Kind::Same : Kind::Different) << row.what;
  }
}

TEST(SettingsDifference, SelectedFeature_IsComparedUnderThePositionsOfItsSelectors) {
  const Steps file = {{"Bank", "A"}, {"Channel", "Red"}, {"Gain", "1"}, {"Channel", "Blue"},
                      {"Gain", "2"}, {"Channel", "Red"}, {"Bank", "B"}, {"Gain", "3"}};
  const Steps present = {{"Bank", "B"}, {"Channel", "Red"},  {"Gain", "9"}, {"Bank", "A"},
                         {"Gain", "1"}, {"Channel", "Blue"}, {"Gain", "5"}};

  EXPECT_THAT(Describe(Compare(file, present)),
              ElementsAre("Gain[Bank=A, Channel=Red] 1->1 same", "Gain[Bank=A, Channel=Blue] 5->2 different",
                          "Channel[Bank=A] Blue->Red different", "Bank[] A->B different",
                          "Gain[Bank=B, Channel=Red] 9->3 different"));
}

TEST(SettingsDifference, FeatureThatOccursTwiceAtOnePlace_CountsOnceAsTheLastSays) {
  EXPECT_THAT(Describe(Compare({{"Width", "1"}, {"Label", "x"}, {"Width", "2"}}, {{"Width", "2"}, {"Label", "x"}})),
              ElementsAre("Label[] x->x same", "Width[] 2->2 same"));
}

TEST(SettingsDifference, SelectorThatOneSideNeverMoved_IsNoPositionThere) {
  EXPECT_THAT(Describe(Compare({{"Gain", "1"}}, {{"Bank", "A"}, {"Gain", "1"}})), ElementsAre("Gain[] ->1 no value"));
}

TEST(SettingsDifference, FeatureThatTheDeviceDoesNotHave_IsToldWithItsValue) {
  const SettingsDifference difference = Compare({{"Missing", "1"}}, {});

  EXPECT_THAT(Describe(difference), ElementsAre("Missing[] ->1 no feature"));
  EXPECT_EQ(difference.settings[0].note, "This device has no such feature.");
  EXPECT_EQ(difference.CountChanges(), 0U);
}

TEST(SettingsDifference, FeatureWithoutAPresentValue_HasItsLimitAsNote) {
  const SettingsDifference difference = Compare({{"Locked", "1"}}, {});

  EXPECT_THAT(Describe(difference), ElementsAre("Locked[] ->1 no value"));
  EXPECT_EQ(difference.settings[0].note, "Locked by TLParamsLocked (1).");
  EXPECT_EQ(difference.CountChanges(), 1U);
}

TEST(SettingsDifference, LockedFeatureWhoseValueIsKnown_IsComparedWithIt) {
  const ComparedFeatures features = {
      {"Clock", {.type = KrGenType::Integer, .current = "4", .limit = "Locked by TLParamsLocked (1)."}}};
  KrGenSettings same = MakeSettings({{"Clock", "0x4"}});
  KrGenSettings other = MakeSettings({{"Clock", "5"}});

  EXPECT_THAT(Describe(CompareSettings(same, {}, features)), ElementsAre("Clock[] 4->0x4 same"));
  EXPECT_THAT(Describe(CompareSettings(other, {}, features)), ElementsAre("Clock[] 4->5 different"));
  EXPECT_EQ(CompareSettings(other, {}, features).settings[0].note, "Locked by TLParamsLocked (1).");
}

TEST(SettingsDifference, OnlyTheDeviceHas_IsLeftOut) {
  EXPECT_THAT(Compare({}, {{"Width", "1"}}).settings, IsEmpty());
}

TEST(SettingsDifference, Summarize_CountsInWords) {
  struct {
    const char* what;
    Steps file;
    Steps present;
    const char* text;
  } const rows[] = {
      {"one", {{"Width", "1"}}, {{"Width", "2"}}, "1 of 1 setting differs from the file."},
      {"several",
       {{"Width", "1"}, {"Rate", "1"}},
       {{"Width", "2"}, {"Rate", "1"}},
       "1 of 2 settings differs from the file."},
      {"none",
       {{"Width", "1"}, {"Rate", "1"}},
       {{"Width", "1"}, {"Rate", "1"}},
       "0 of 2 settings differ from the file."},
      {"locked",
       {{"Locked", "1"}, {"Width", "1"}},
       {{"Width", "1"}},
       "0 of 2 settings differ from the file. 1 has no value on the device now."},
      {"missing",
       {{"X", "1"}, {"Y", "1"}},
       {},
       "0 of 2 settings differ from the file. 2 are of features that this device does not have."},
  };

  for (const auto& row : rows)
    EXPECT_EQ(Compare(row.file, row.present).Summarize(), row.text) << row.what;
}

TEST(SettingsDifference, ManySettingsWithLongNamesAndValues_AreAllCompared) {
  constexpr int kMany = 5000;
  const std::string longText(10'000, 'x');
  Steps file;
  Steps present;
  for (int i = 0; i < kMany; ++i) {
    const std::string name = "Width" + std::to_string(i) + (i % 100 == 0 ? longText : "");
    file.emplace_back(name, longText);
    present.emplace_back(name, i % 2 == 0 ? longText : "y");
  }
  ComparedFeatures features;
  for (const auto& [name, value] : file)
    features[name] = {.type = KrGenType::String};

  const SettingsDifference difference = CompareSettings(MakeSettings(file), MakeSettings(present), features);

  EXPECT_EQ(difference.Count(Kind::Same), kMany / 2U);
  EXPECT_EQ(difference.Count(Kind::Different), kMany / 2U);
}

} // namespace krgui
