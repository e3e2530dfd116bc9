// What the viewer keeps of the host's side of a camera from one run to the next.

#include "viewerfixture.h"
#include "window/viewersettings.h"

using krviewer::HostSettings;
using krviewer::ViewerSettings;

namespace {

class ViewerHostTest : public ViewerTest {
protected:
  /// As a run before has left them.
  void Keep(const HostSettings& aSettings) {
    ViewerSettings settings(mSettingsFile);
    krviewer::RecentCameras cameras;
    cameras.Add({kMonoMAC, "Simulated Mono Camera"});
    settings.SetRecentCameras(cameras);
    settings.SetHostSettings(aSettings, kMonoMAC);
  }
  /// What the next run would be given. A value that the camera is not set to is not among it.
  HostSettings GetKept() const { return ViewerSettings(mSettingsFile).GetHostSettings(kMonoMAC); }
};

} // namespace

TEST_F(ViewerHostTest, ChangedSettings_AreThereRunAfterRun) {
  const HostSettings changed = {
      {{{"StreamBufferCountManual", "7"}, {"StreamFrameRetention", "123000"}}, {{"LinkCommandTimeout", "2500000"}}}};
  Keep(changed);

  for (int run = 0; run < 2; ++run) {
    Begin();
    OpenStreaming();
    End();

    EXPECT_EQ(GetKept(), changed) << run;
  }
}

TEST_F(ViewerHostTest, ChangedSettings_OutliveADisconnection) {
  const HostSettings changed = {{{{"StreamBufferCountManual", "7"}}, {}}};
  Keep(changed);
  Begin();
  OpenStreaming();

  ASSERT_TRUE(Choose("disconnect"));
  ASSERT_TRUE(Await([this] { return GetPage()->CanConnect(); }));
  ASSERT_TRUE(Choose("connect"));
  ASSERT_TRUE(Await([this] { return GetPage()->IsStreaming(); }));
  End();

  EXPECT_EQ(GetKept(), changed);
}

TEST_F(ViewerHostTest, ChangedSettings_AreKeptWhenTheTabIsClosed) {
  const HostSettings changed = {{{}, {{"LinkCommandTimeout", "2500000"}}}};
  Keep(changed);
  Begin();
  OpenStreaming();

  ASSERT_TRUE(Choose("closeCamera"));
  ASSERT_TRUE(Await([this] { return IsFirstPageShown(); }));
  OpenStreaming();
  End();

  EXPECT_EQ(GetKept(), changed);
}

TEST_F(ViewerHostTest, SettingsOfOneCamera_AreNotAnotherOnes) {
  Keep({{{{"StreamBufferCountManual", "7"}}, {}}});
  Begin();
  OpenStreaming(kColourMAC);
  End();

  EXPECT_EQ(ViewerSettings(mSettingsFile).GetHostSettings(kColourMAC), HostSettings());
}

TEST_F(ViewerHostTest, SettingsThatDoNotFit_AreKeptNoLongerAndCostTheOthersNothing) {
  Keep({{{{"NoSuchFeature", "1"}, {"StreamBufferCountManual", "1000000"}, {"StreamFrameRetention", "123000"}}, {}}});
  Begin();
  OpenStreaming();
  End();

  EXPECT_EQ(GetKept(), (HostSettings{{{{"StreamFrameRetention", "123000"}}, {}}}));
}
