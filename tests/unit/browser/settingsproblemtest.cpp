#include "logic/browser/settingsproblem.h"

#include <gtest/gtest.h>

namespace krgui {

TEST(SettingsProblem, Parts_OfWhatTheArrayTells_AreFeatureAndReason) {
  struct {
    const char* what;
    const char* text;
    const char* feature;
    const char* reason;
  } constexpr kRows[] = {
      {"not restored", "Width: 641 was set, but the device has 640.", "Width", "641 was set, but the device has 640."},
      {"not restored at a position", "Gain [GainSelector=Blue]: 30 is wanted, but was not set: no.",
       "Gain [GainSelector=Blue]", "30 is wanted, but was not set: no."},
      {"a word that was not set", "Width: abc is wanted, but was not set: it takes numbers.", "Width",
       "abc is wanted, but was not set: it takes numbers."},
      {"a word that was set", "Mode [A=B]: on was set, but the device has off.", "Mode [A=B]",
       "on was set, but the device has off."},
      {"not there", "Missing: there is no such parameter.", "Missing", "There is no such parameter."},
      {"not stored", "Gain cannot be read: Refused.", "Gain", "Cannot be read: Refused."},
      {"not stored at a position", "Gain [A=B, C=D] cannot be read: x", "Gain [A=B, C=D]", "Cannot be read: x"},
      {"a bracket in a position", "Gain [A=x]y]: lost", "Gain [A=x]y]", "Lost"},
      {"a command", "DeviceFeaturePersistenceStart failed: late", "DeviceFeaturePersistenceStart", "Failed: late"},
      {"all", "The settings are not all taken: It was cancelled.", "",
       "The settings are not all taken: It was cancelled."},
      {"a number", "3 further settings were not tried: It was cancelled.", "",
       "3 further settings were not tried: It was cancelled."},
      {"a word alone", "Broken", "", "Broken"},
      {"nothing", "", "", ""},
      {"a bracket that does not end", "Gain [A=B", "", "Gain [A=B"},
      {"other letters", "Größe: übel", "Größe", "übel"},
  };

  for (const auto& row : kRows) {
    KrStringList problems;
    problems.Add(row.text);

    const std::vector<SettingsProblem> parts = PartSettingsProblems(problems);

    ASSERT_EQ(parts.size(), 1U) << row.what;
    EXPECT_EQ(parts[0].feature, row.feature) << row.what;
    EXPECT_EQ(parts[0].reason, row.reason) << row.what;
  }
}

} // namespace krgui
