// What happens to the camera bridge manager while a camera is asked, which takes as long as the test wants, or while a
// message box is open.

#include "camerafixture.h"

#include "krpersistence/krconfigurationwriter.h"

#include <QProgressBar>

#include <functional>

namespace krgui {

namespace {

/// Moves on by itself until it is stopped.
class StoppableClock final : public krtransport::ICameraClock {
public:
  std::uint64_t GetNowNs() const override { return mRunning.GetNowNs(); }
  bool WaitUntil(std::unique_lock<std::mutex>& aLock, std::condition_variable& aWake, std::uint64_t aTimeNs,
                 const std::function<bool()>& aIsWoken) override {
    while (mIsStopped && !aIsWoken())
      aWake.wait_for(aLock, std::chrono::milliseconds(1));
    return mRunning.WaitUntil(aLock, aWake, aTimeNs, aIsWoken);
  }
  void SetStopped(bool aIsStopped) { mIsStopped = aIsStopped; }

private:
  JumpingClock mRunning;
  std::atomic<bool> mIsStopped{false};
};

class Endings : public CameraTest {
protected:
  explicit Endings(std::shared_ptr<StoppableClock> aClock = std::make_shared<StoppableClock>())
      : CameraTest(aClock), mClock(std::move(aClock)) {}
  ~Endings() override { mClock->SetStopped(false); }

  /// Lets the camera take all the time that it wants, and does this once the window waits for it.
  void WhileItWaits(const std::function<void(QWidget& aDialog)>& aAction) {
    mClock->SetStopped(true);
    OnNextDialog("progress", [this, aAction](QWidget& aDialog) {
      ++mWaits;
      EXPECT_NE(aDialog.findChild<QProgressBar*>(), nullptr);
      aAction(aDialog);
    });
  }

  const std::shared_ptr<StoppableClock> mClock;
  int mWaits = 0;
};

} // namespace

TEST_F(Endings, SlowCamera_LeavesTheWindowPaintingAndCanBeCancelled) {
  Open();
  Click(id::kGenCP);
  bool isPainted = false;

  WhileItWaits([&](QWidget& aDialog) {
    isPainted = !mWindow->GetWidget()->grab().isNull();
    QTest::keyClick(&aDialog, Qt::Key_Escape);
  });
  Click(id::kGenCPConnect);

  EXPECT_EQ(mWaits, 1);
  EXPECT_TRUE(isPainted);
  EXPECT_FALSE(GetBridge(0).IsConnected());
  EXPECT_TRUE(IsEnabled(id::kGenCPConnect));
  EXPECT_EQ(GetText(id::kGenCPStatus), "Not initialized");

  mClock->SetStopped(false);
  Click(id::kGenCPConnect);
  EXPECT_TRUE(HasParameters());
}

TEST_F(Endings, SlowCamera_CanBeCancelledByTheButton) {
  Open();

  WhileItWaits([](QWidget& aDialog) { QTest::mouseClick(aDialog.findChild<QPushButton*>(), Qt::LeftButton); });
  Click(id::kGenCP);

  EXPECT_EQ(mWaits, 1);
  EXPECT_TRUE(IsChecked(id::kGenCP));
  EXPECT_THAT(GetEntries(id::kGenCPXML), testing::IsEmpty());
}

TEST_F(Endings, ClosedWhileItConnects_EndsThat) {
  Open();
  Click(id::kGenCP);

  WhileItWaits([this](QWidget&) { EXPECT_TRUE(mWindow->Close().IsOK()); });
  Click(id::kGenCPConnect);

  EXPECT_EQ(mWaits, 1);
  EXPECT_EQ(mWindow->GetWidget(), nullptr);
  EXPECT_FALSE(GetBridge(0).IsConnected());
  mClock->SetStopped(false);
  ASSERT_TRUE(mWindow->ShowModeless(0).IsOK());
  EXPECT_TRUE(IsChecked(id::kGenCP));
}

TEST_F(Endings, DeletedWhileItConnects_EndsThat) {
  Open();
  Click(id::kGenCP);

  WhileItWaits([this](QWidget&) { mWindow.reset(); });
  Click(id::kGenCPConnect);

  EXPECT_EQ(mWaits, 1);
}

TEST_F(Endings, DeviceTakenOutWhileItConnects_EndsThat) {
  Open();
  Click(id::kGenCP);

  WhileItWaits([this](QWidget&) {
    EXPECT_TRUE(mWindow->SetDevice(nullptr).IsOK());
    mDevice.reset();
  });
  Click(id::kGenCPConnect);

  EXPECT_EQ(mWaits, 1);
  EXPECT_EQ(mWindow->GetBridgeCount(), 0);
  EXPECT_FALSE(IsEnabled(id::kGenCP));
}

TEST_F(Endings, OpenedAgainWhileItConnects_IsAnotherOpening) {
  Open();
  Click(id::kGenCP);

  WhileItWaits([this](QWidget&) {
    EXPECT_TRUE(mWindow->Close().IsOK());
    mClock->SetStopped(false);
    EXPECT_TRUE(mWindow->ShowModeless(0).IsOK());
  });
  Click(id::kGenCPConnect);

  EXPECT_EQ(mWaits, 1);
  EXPECT_TRUE(IsChecked(id::kGenCP));
  EXPECT_FALSE(HasParameters());
}

TEST_F(Endings, SavingWhileItConnects_IsBusy) {
  Open();
  Click(id::kGenCP);
  KrConfigurationWriter writer;
  KrResult saved;

  WhileItWaits([&](QWidget& aDialog) {
    saved = mWindow->Save(writer);
    mWindow->HidePCF();
    QTest::keyClick(&aDialog, Qt::Key_Escape);
  });
  Click(id::kGenCPConnect);

  EXPECT_EQ(mWaits, 1);
  EXPECT_EQ(saved, KrResult::Code::Busy);
  EXPECT_FALSE(Get(id::kLoad).isVisible());
}

TEST_F(Endings, DeviceTakenOutWhileConnected_EmptiesTheWindow) {
  Open();
  ConnectGenCP();
  ASSERT_TRUE(HasParameters());

  ASSERT_TRUE(mWindow->SetDevice(nullptr).IsOK());
  mDevice.reset();

  EXPECT_FALSE(HasParameters());
  EXPECT_EQ(mWindow->GetBridgeCount(), 0);
}

TEST_F(Endings, DeviceLostWhileConnected_CanBeTakenOut) {
  Open();
  ConnectGenCP();
  ASSERT_TRUE(mLab->Lose(kGrabberMAC).IsOK());

  ASSERT_TRUE(mWindow->SetDevice(nullptr).IsOK());

  EXPECT_FALSE(HasParameters());
}

TEST_F(Endings, ClosedAndDeletedWhileConnected_End) {
  Open();
  ConnectGenCP();

  ASSERT_TRUE(mWindow->Close().IsOK());
  EXPECT_TRUE(GetBridge(0).IsConnected());

  mWindow.reset();
}

TEST_F(Endings, ParentThatEndsWhileConnected_TakesTheWindowAlong) {
  auto parent = std::make_unique<QWidget>();
  ASSERT_TRUE(mWindow->SetDevice(mDevice.get()).IsOK());
  ASSERT_TRUE(mWindow->CreateIn(parent.get()).IsOK());
  parent->show();
  ConnectGenCP();

  parent.reset();

  EXPECT_EQ(mWindow->GetWidget(), nullptr);
  EXPECT_TRUE(GetBridge(0).IsConnected());
}

TEST_F(Endings, WindowDeletedUnderAMessageBox_EndsIt) {
  Open();
  Click(id::kCameraFile);
  OnNextDialog("", [this](QWidget&) { mWindow.reset(); });

  Click(id::kLoad);

  EXPECT_EQ(mWindow, nullptr);
}

TEST_F(Endings, DeviceTakenOutUnderTheFileDialog_LeavesItsAnswerAlone) {
  Open();
  Click(id::kCameraFile);
  OnNextDialog("camerafile", [this](QWidget& aDialog) {
    EXPECT_TRUE(mWindow->SetDevice(nullptr).IsOK());
    EnterFile(aDialog, kTextCameraFile);
  });

  Click(id::kBrowse);

  EXPECT_EQ(GetText(id::kPath), "");
}

} // namespace krgui
