// The viewer's end while the disk of its recording does not answer.

#include "fakecamera.h"
#include "hangingdisk.h"
#include "viewersession.h"

#include <QDir>
#include <QFileInfo>

namespace {

const QString kCamera = "Fake (127.0.0.1)";
const QString kEnding = "krviewer Ends";

class ViewerEnding : public ViewerSession {
protected:
  ViewerEnding() { mCamera.SetFramePeriod(100'000); }

  /// Records into a folder of the disk, which stops answering then.
  void RecordUntilTheDiskHangs() {
    ASSERT_TRUE(QDir().mkpath(mPlace));
    Start({"127.0.0.1"}, [this] { mDisk.Enter(); });
    ASSERT_TRUE(AwaitStreaming(kCamera));
    User().Press("alt+7");
    ASSERT_TRUE(Fill("Folder", mPlace));
    ASSERT_TRUE(Fill("Name", "test"));
    User().Press("ctrl+r");
    ASSERT_TRUE(User().Await("frames on the disk", [this] { return QFileInfo::exists(GetRecorded(2)); }));
    mDisk.Hang();
  }
  QString GetRecorded(int aNumber) const {
    return QStringLiteral("%1/test/frame-%2.raw").arg(mPlace).arg(aNumber, 8, 10, QLatin1Char('0'));
  }

  const FakeCamera mCamera;
  const QString mPlace = GetPath("disk");
  HangingDisk mDisk{mPlace.toStdString()};
};

} // namespace

TEST_F(ViewerEnding, DiskThatDoesNotAnswer_NeedNotBeWaitedFor) {
  ASSERT_NO_FATAL_FAILURE(RecordUntilTheDiskHangs());

  User().Press("ctrl+q");
  ASSERT_TRUE(User().AwaitWindow(kEnding));
  ASSERT_TRUE(User().Click("push button", "Abandon the Recording"));
  ASSERT_TRUE(User().AwaitText("may not answer any more"));
  EXPECT_TRUE(User().IsRunning());
  ASSERT_TRUE(User().Click("push button", "Do Not Wait"));

  EXPECT_TRUE(User().AwaitText("is not whole"));
  EXPECT_TRUE(User().AwaitText(mPlace + "/test"));
  ASSERT_TRUE(User().Click("push button", "Close"));
  EXPECT_EQ(User().AwaitEnd(), 1);
  EXPECT_TRUE(User().GetErrors().contains("did not answer")) << User().GetErrors().toStdString();
}

TEST_F(ViewerEnding, DiskThatAnswersAgain_EndsByItselfWithAWholeRecording) {
  ASSERT_NO_FATAL_FAILURE(RecordUntilTheDiskHangs());
  User().Press("ctrl+q");
  ASSERT_TRUE(User().AwaitWindow(kEnding));

  mDisk.Recover();

  EXPECT_EQ(User().AwaitEnd(), 0) << User().GetErrors().toStdString();
  EXPECT_TRUE(User().GetOutput().contains("recording=ended"));
  EXPECT_TRUE(User().GetOutput().contains(" abandoned=0")) << User().GetOutput().toStdString();
}
