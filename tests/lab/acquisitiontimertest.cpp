#include "simulation/acquisitiontimer.h"

#include <gmock/gmock.h>

using krtransport::AcquisitionTimer;
using krtransport::Exposure;
using krtransport::TimingSettings;
using krtransport::TriggerEdge;
using krtransport::TriggerKind;

namespace {

constexpr std::size_t kFrameStart = 0;
constexpr std::size_t kAcquisitionStart = 1;

TimingSettings MakeSettings() {
  TimingSettings settings;
  settings.periodNs = 100;
  settings.exposureNs = 40;
  settings.linePeriodNs = 1000;
  return settings;
}

TimingSettings MakeSoftwareTriggered() {
  TimingSettings settings = MakeSettings();
  settings.triggers[kFrameStart].isOn = true;
  return settings;
}

TimingSettings MakeLineTriggered() {
  TimingSettings settings = MakeSoftwareTriggered();
  settings.triggers[kFrameStart].isFromLine = true;
  return settings;
}

} // namespace

TEST(AcquisitionTimer, GetNextExposure_NotStartedOrStopped_IsNone) {
  AcquisitionTimer timer;
  EXPECT_FALSE(timer.GetNextExposure(10, MakeSettings()).has_value());

  timer.Start(10);
  EXPECT_TRUE(timer.GetNextExposure(10, MakeSettings()).has_value());
  timer.Stop();

  EXPECT_FALSE(timer.GetNextExposure(10, MakeSettings()).has_value());
}

TEST(AcquisitionTimer, FreeRun_FrameTakenLate_KeepsThePeriodAndBringsNoBurst) {
  AcquisitionTimer timer;
  timer.Start(1000);
  EXPECT_EQ(timer.GetNextExposure(1000, MakeSettings())->endNs, 1040u);
  ASSERT_TRUE(timer.EndExposure({1000, 1040, 1000}, MakeSettings()));

  EXPECT_EQ(timer.GetNextExposure(1150, MakeSettings())->beginNs, 1100u) << "a little late";
  EXPECT_EQ(timer.GetNextExposure(9000, MakeSettings())->beginNs, 8900u) << "many periods late";
}

TEST(AcquisitionTimer, Line_FrameTakenLate_LeavesOldPulsesOutAndCountsThem) {
  AcquisitionTimer timer;
  timer.Start(500);
  const TimingSettings settings = MakeLineTriggered();
  EXPECT_EQ(timer.GetNextExposure(500, settings)->beginNs, 1000u);
  ASSERT_TRUE(timer.EndExposure({1000, 1040, 1000}, settings));

  const Exposure next = *timer.GetNextExposure(9500, settings);

  EXPECT_EQ(next.beginNs, 9000u);
  ASSERT_TRUE(timer.EndExposure(next, settings));
  EXPECT_EQ(timer.GetMissedTriggers(), 7u) << "those at 2000 to 8000";
}

TEST(AcquisitionTimer, Line_DelayAndEdge_MoveTheExposure) {
  AcquisitionTimer timer;
  timer.Start(1);
  TimingSettings settings = MakeLineTriggered();
  settings.triggers[kFrameStart].edge = TriggerEdge::Falling;
  settings.triggers[kFrameStart].delayNs = 7;

  EXPECT_EQ(timer.GetNextExposure(1, settings)->beginNs, 507u);

  settings.triggers[kFrameStart].edge = TriggerEdge::Any;
  EXPECT_EQ(timer.GetNextExposure(1, settings)->beginNs, 507u);
  settings.triggers[kFrameStart].edge = TriggerEdge::Rising;
  EXPECT_EQ(timer.GetNextExposure(1, settings)->beginNs, 1007u);
}

TEST(AcquisitionTimer, AcquisitionStartFromTheLine_FramesBeginAtItsPulse) {
  AcquisitionTimer timer;
  timer.Start(1200);
  TimingSettings settings = MakeSettings();
  settings.triggers[kAcquisitionStart] = {.isOn = true, .isFromLine = true, .edge = TriggerEdge::Rising, .delayNs = 5};

  EXPECT_EQ(timer.GetNextExposure(1200, settings)->beginNs, 2005u);
}

TEST(AcquisitionTimer, EndExposure_OfAStoppedAcquisition_TakesNoFrame) {
  AcquisitionTimer timer;
  timer.Start(100);
  const Exposure old = *timer.GetNextExposure(100, MakeSettings());
  timer.Stop();
  EXPECT_FALSE(timer.EndExposure(old, MakeSettings()));

  timer.Start(130);

  EXPECT_FALSE(timer.EndExposure(old, MakeSettings()));
}

TEST(AcquisitionTimer, SoftwareTrigger_SettingsThatWaitForItNoMore_ForgetIt) {
  AcquisitionTimer timer;
  timer.Start(100);
  timer.TriggerBySoftware(TriggerKind::FrameStart, 110, MakeSoftwareTriggered());
  EXPECT_EQ(timer.GetNextExposure(110, MakeSoftwareTriggered())->beginNs, 110u);

  timer.ApplySettings(MakeLineTriggered());

  EXPECT_FALSE(timer.GetNextExposure(110, MakeSoftwareTriggered()).has_value());
}

TEST(AcquisitionTimer, SoftwareTrigger_BeyondTheFramesOfAnAcquisition_IsMissed) {
  AcquisitionTimer timer;
  timer.Start(100);
  TimingSettings settings = MakeSoftwareTriggered();
  settings.framesPerStart = 2;

  for (const std::uint64_t now : {100u, 200u, 300u})
    timer.TriggerBySoftware(TriggerKind::FrameStart, now, settings);

  EXPECT_EQ(timer.GetMissedTriggers(), 1u);
  ASSERT_TRUE(timer.EndExposure(*timer.GetNextExposure(300, settings), settings));
  EXPECT_TRUE(timer.IsAcquiring());
  ASSERT_TRUE(timer.EndExposure(*timer.GetNextExposure(300, settings), settings));
  EXPECT_FALSE(timer.IsAcquiring());
}
