#include "acquisition/expectedframes.h"

#include <gtest/gtest.h>

using krviewer::ExpectedFrames;
using krviewer::ExpectFrames;
using krviewer::IsSoftwareTrigger;
using krviewer::KeptSetting;

namespace {

KeptSetting MakeSetting(const char* aName, const char* aValue, const char* aSelected = nullptr) {
  KeptSetting setting{.name = aName, .value = aValue};
  if (aSelected)
    setting.positions = {{"TriggerSelector", aSelected}};
  return setting;
}

} // namespace

TEST(ExpectFrames, NothingKnown_ExpectsFramesAtOnce) {
  const ExpectedFrames expected = ExpectFrames({});

  EXPECT_TRUE(expected.trigger.IsEmpty());
  EXPECT_EQ(expected.intervalMs, 0u);
}

TEST(ExpectFrames, TriggerThatIsOn_IsNamedByItsOwnSource) {
  const ExpectedFrames expected = ExpectFrames(
      {MakeSetting("TriggerMode", "Off", "FrameEnd"), MakeSetting("TriggerMode", "On", "FrameStart"),
       MakeSetting("TriggerSource", "Line2", "FrameEnd"), MakeSetting("TriggerSource", "Line1", "FrameStart")});

  EXPECT_EQ(expected.trigger, KrString("Line1"));
}

TEST(ExpectFrames, TriggerThatIsOff_IsNotWaitedFor) {
  EXPECT_TRUE(
      ExpectFrames({MakeSetting("TriggerMode", "Off"), MakeSetting("TriggerSource", "Line1")}).trigger.IsEmpty());
}

TEST(ExpectFrames, TriggerWhoseSourceIsNotKnown_IsWaitedForAllTheSame) {
  EXPECT_FALSE(ExpectFrames({MakeSetting("TriggerMode", "On")}).trigger.IsEmpty());
}

TEST(ExpectFrames, ExposureAndFrameRate_TheLongerCounts) {
  EXPECT_EQ(ExpectFrames({MakeSetting("ExposureTime", "5e6"), MakeSetting("AcquisitionFrameRate", "10")}).intervalMs,
            5000u);
  EXPECT_EQ(
      ExpectFrames({MakeSetting("ExposureTimeAbs", "1000"), MakeSetting("AcquisitionFrameRateAbs", "0.5")}).intervalMs,
      2000u);
}

TEST(ExpectFrames, FrameRateThatIsOff_DoesNotCount) {
  EXPECT_EQ(
      ExpectFrames({MakeSetting("AcquisitionFrameRateEnable", "false"), MakeSetting("AcquisitionFrameRate", "0.1")})
          .intervalMs,
      0u);
}

TEST(ExpectFrames, ValuesThatAreNoDuration_DoNotCount) {
  for (const char* const value : {"", "fast", "-5", "inf", "nan", "0"})
    EXPECT_EQ(ExpectFrames({MakeSetting("ExposureTime", value)}).intervalMs, 0u) << value;
}

TEST(IsSoftwareTrigger, SourcesOfTheApplication_AreThoseNamedSo) {
  EXPECT_TRUE(IsSoftwareTrigger("Software"));
  EXPECT_TRUE(IsSoftwareTrigger("SoftwareSignal0"));
  EXPECT_FALSE(IsSoftwareTrigger("Line0"));
  EXPECT_FALSE(IsSoftwareTrigger(""));
}
