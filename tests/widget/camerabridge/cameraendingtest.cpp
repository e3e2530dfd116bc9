// What happens to the camera bridge manager while a camera is asked, which takes as long as the test wants, or while a
// message box is open.

#include "camerawaitingfixture.h"

#include "krpersistence/krconfigurationwriter.h"

#include <QPointer>

namespace krgui {

using Endings = WaitingTest;

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

TEST_F(Endings, CancelledWhileTheParametersAreRead_IsNotConnected) {
  Open();
  Click(id::kGenCP);

  WhileItReads(0, [this](QWidget& aDialog) {
    EXPECT_TRUE(GetBridge(0).IsConnected());
    QTest::keyClick(&aDialog, Qt::Key_Escape);
  });
  Click(id::kGenCPConnect);

  EXPECT_EQ(mWaits, 1);
  EXPECT_FALSE(GetBridge(0).IsConnected());
  EXPECT_FALSE(HasParameters());
  EXPECT_EQ(GetText(id::kGenCPStatus), "Not initialized");
}

TEST_F(Endings, ClosedWhileTheParametersAreRead_IsNotConnected) {
  Open();
  Click(id::kGenCP);

  WhileItReads(0, [this](QWidget&) { EXPECT_TRUE(mWindow->Close().IsOK()); });
  Click(id::kGenCPConnect);

  EXPECT_EQ(mWaits, 1);
  EXPECT_EQ(mWindow->GetWidget(), nullptr);
  EXPECT_FALSE(GetBridge(0).IsConnected());
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

TEST_F(Endings, DeviceTakenOutOfASlowCamera_LeavesTheWindowPaintingUntilNobodyUsesIt) {
  Open();
  ConnectGenCP();
  bool isPainted = false;

  WhileItWaits([&](QWidget&) {
    isPainted = !mWindow->GetWidget()->grab().isNull();
    mClock->SetStopped(false);
  });
  ASSERT_TRUE(mWindow->SetDevice(nullptr).IsOK());
  mDevice.reset();

  EXPECT_EQ(mWaits, 1);
  EXPECT_TRUE(isPainted);
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

TEST_F(Endings, ClosedUnderAMessageBox_EndsIt) {
  Open();
  Click(id::kCameraFile);
  OnNextDialog("", [this](QWidget&) { EXPECT_TRUE(mWindow->Close().IsOK()); });

  Click(id::kLoad);

  EXPECT_EQ(mWindow->GetWidget(), nullptr);
}

TEST_F(Endings, DeviceTakenOutUnderAMessageBox_LeavesTheBoxToTheUser) {
  Open();
  Click(id::kCameraFile);
  OnNextDialog("", [this](QWidget&) {
    EXPECT_TRUE(mWindow->SetDevice(nullptr).IsOK());
    mDevice.reset();
  });

  ExpectBoxes(1);
  Click(id::kLoad);

  EXPECT_EQ(mWindow->GetBridgeCount(), 0);
  EXPECT_FALSE(IsEnabled(id::kLoad));
}

TEST_F(Endings, DeviceTakenOutUnderTheFileDialog_EndsIt) {
  Open();
  Click(id::kCameraFile);
  QPointer<QWidget> dialog;

  OnNextDialog("camerafile", [&](QWidget& aDialog) {
    dialog = &aDialog;
    EXPECT_TRUE(mWindow->SetDevice(nullptr).IsOK());
  });
  Click(id::kBrowse);

  EXPECT_TRUE(dialog.isNull());
  EXPECT_EQ(GetText(id::kPath), "");
}

TEST_F(Endings, ClosedUnderTheFileDialog_EndsIt) {
  Open();
  Click(id::kCameraFile);

  OnNextDialog("camerafile", [this](QWidget&) { EXPECT_TRUE(mWindow->Close().IsOK()); });
  Click(id::kBrowse);

  EXPECT_EQ(mWindow->GetWidget(), nullptr);
}

TEST_F(Endings, DeletedUnderTheFileDialog_EndsIt) {
  Open();
  Click(id::kCameraFile);

  OnNextDialog("camerafile", [this](QWidget&) { mWindow.reset(); });
  Click(id::kBrowse);

  EXPECT_EQ(mWindow, nullptr);
}

} // namespace krgui
