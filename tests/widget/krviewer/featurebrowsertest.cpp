#include "panels/featurebrowser.h"

#include "viewerlab.h"

#include <QTreeView>

using krviewer::AcquisitionState;
using krviewer::FeatureBrowser;

namespace {

/// The browser of the viewer on a camera of the lab.
class FeatureBrowserTest : public ViewerLabTest {
protected:
  void Open() {
    ASSERT_TRUE(mBrowser.GetWindow().ShowModeless(0).IsOK());
    ViewerLabTest::Open();
  }
  void LookAgain() override { mBrowser.Follow(mAcquisition->GetParameters(krviewer::ParameterBorrower::Browser)); }
  void Close() {
    mBrowser.GiveBack(mAcquisition->GetParameters(krviewer::ParameterBorrower::Browser));
    mAcquisition->Stop();
  }
  /// The value in the row of a feature; empty while there is none.
  QString GetValue(const QString& aName) {
    const auto* const grid = mBrowser.GetWindow().GetWidget()->findChild<QTreeView*>("propertiesGrid");
    const QModelIndexList rows = grid->model()->match(grid->model()->index(0, 0), Qt::DisplayRole, aName, 1,
                                                      Qt::MatchExactly | Qt::MatchRecursive);
    return rows.isEmpty() ? QString() : rows.constFirst().siblingAtColumn(1).data().toString();
  }

  FeatureBrowser mBrowser;
};

} // namespace

TEST_F(FeatureBrowserTest, FeaturesOfTheCamera_AreShownAndGivenBackAtTheEnd) {
  Open();

  EXPECT_TRUE(Await([this] { return GetValue("DeviceUserID") == "sim-mono"; }));

  Close();
  EXPECT_EQ(GetValue("DeviceUserID"), "");
}

TEST_F(FeatureBrowserTest, CameraLostAndBack_ShowsTheFeaturesOfEachConnectionAndHoldsUpNone) {
  Open();
  for (int round = 0; round < 5; ++round) {
    ASSERT_TRUE(Await([this] { return IsIn(AcquisitionState::Streaming) && GetValue("Width") == "1280 "; })) << round;

    ASSERT_TRUE(mLab->Lose(kMonoMAC).IsOK());
    ASSERT_TRUE(Await([this] { return IsIn(AcquisitionState::Lost); })) << round;
    ASSERT_TRUE(mLab->Restore(kMonoMAC).IsOK());
  }

  EXPECT_TRUE(Await([this] { return IsIn(AcquisitionState::Streaming) && GetValue("Width") == "1280 "; }));

  Close();
}

TEST_F(FeatureBrowserTest, StoppedWhileTheCameraIsLost_Ends) {
  Open();
  ASSERT_TRUE(Await([this] { return GetValue("Width") == "1280 "; }));
  ASSERT_TRUE(mLab->Lose(kMonoMAC).IsOK());
  ASSERT_TRUE(Await([this] { return IsIn(AcquisitionState::Lost); }));

  Close();

  EXPECT_TRUE(IsIn(AcquisitionState::Finished));
}
