// The serial bridge manager closed, deleted or given another device while a message box or dialog of it is open, and
// bridges that outlive their window.

#include "bridgefixture.h"

#include <QAbstractItemView>
#include <QPointer>

namespace krgui {

namespace {

using krtest::BridgeHost;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

class Endings : public BridgeTest {
protected:
  /// What is done while the next box or dialog is open; it has then gone, or is answered by Escape.
  template <typename Action>
  void During(Action aAction) {
    DuringNextModalLoop([this, aAction](QWidget& aBox) {
      const QPointer<QWidget> box(&aBox);
      mHasActed = true;
      aAction();
      if (box && box->isVisible())
        QTest::keyClick(box, Qt::Key_Escape);
    });
  }
  void ExpectActed() const {
    EXPECT_TRUE(mHasActed);
    EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
  }

  bool mHasActed = false;
};

} // namespace

TEST_F(Endings, WindowClosed_BridgesGoOnAndAreThereAgain) {
  SetRates({"9600"});
  OpenOnSerial1();
  Link(COM3);

  ASSERT_TRUE(mWindow->Close().IsOK());

  mHost.Send(3, "hello");
  EXPECT_TRUE(WaitFor([&] { return mLines[1]->GetSent() == "hello"; }));
  EXPECT_THAT(Save().front(), Pair("Serial1", "COMPort"));
  ASSERT_TRUE(mWindow->ShowModeless(0).IsOK());
  PickPort(Serial1);
  EXPECT_EQ(GetSelected(id::kCOMPort), "COM3");
  EXPECT_EQ(GetText(id::kBytesSent), "Bytes sent: 5");
}

TEST_F(Endings, WindowDeleted_EndsTheBridges) {
  SetRates({"9600"});
  OpenOnSerial1();
  Link(COM3);

  mWindow.reset();

  EXPECT_FALSE(mLines[1]->IsOpen());
}

TEST_F(Endings, WindowClosedFromTheBoxOfAFailedPublication_LeavesThePortAtNone) {
  OpenOnSerial1();
  mLines[1]->FailOpening(KrResult::Code::Busy);
  During([this] { ASSERT_TRUE(mWindow->Close().IsOK()); });

  Click(id::kCameraLink);

  ExpectActed();
  EXPECT_THAT(Save(), IsEmpty());
}

TEST_F(Endings, WindowDeletedFromTheBoxOfAFailedPublication_TouchesNothing) {
  OpenOnSerial1();
  mLines[1]->FailOpening(KrResult::Code::Busy);
  During([this] { mWindow.reset(); });

  Click(id::kCameraLink);

  ExpectActed();
}

TEST_F(Endings, WindowClosedWhileTheRateIsAskedFor_LeavesThePortAtNone) {
  OpenOnSerial1();
  During([this] { ASSERT_TRUE(mWindow->Close().IsOK()); });

  Click(id::kCameraLink);

  ExpectActed();
  EXPECT_THAT(Save(), IsEmpty());
  EXPECT_FALSE(mLines[1]->IsOpen());
}

TEST_F(Endings, WindowDeletedWhileTheRateIsAskedFor_EndsTheBridge) {
  OpenOnSerial1();
  During([this] { mWindow.reset(); });

  Click(id::kCameraLink);

  ExpectActed();
  EXPECT_FALSE(mLines[1]->IsOpen());
  EXPECT_THAT(BridgeHost::GetPublished(), IsEmpty());
}

TEST_F(Endings, DeviceTakenOutWhileTheRateIsAskedFor_NothingIsDone) {
  OpenOnSerial1();
  During([this] { ASSERT_TRUE(mWindow->SetDevice(nullptr).IsOK()); });

  Click(id::kCameraLink);

  ExpectActed();
  EXPECT_EQ(GetText(id::kState), "There is no device.");
  EXPECT_THAT(Save(), IsEmpty());
}

TEST_F(Endings, SettingsLoadedWhileTheRateIsAskedFor_StayThoughItIsCancelled) {
  OpenOnSerial1();
  During([this] { ASSERT_THAT(Load({{"Serial1", "CLDLL"}, {"Serial1CLDLLBaudRate", "57600"}}), IsEmpty()); });

  Click(id::kCameraLink);

  ExpectActed();
  EXPECT_EQ(GetKind(), "Camera Link DLL");
  EXPECT_THAT(Save(), ElementsAre(Pair("Serial1", "CLDLL"), Pair("Serial1CLDLLBaudRate", "57600")));
}

TEST_F(Endings, WindowClosedFromTheBoxOfACOMPort_LeavesTheLinkWithoutAPort) {
  OpenOnSerial1();
  mLines[1]->FailOpening(KrResult::Code::Busy);
  Click(id::kCOMPortLink);
  During([this] { ASSERT_TRUE(mWindow->Close().IsOK()); });

  Pick(Get<QComboBox>(id::kCOMPort), COM3);

  ExpectActed();
  EXPECT_THAT(Save(), ElementsAre(Pair("Serial1", "COMPort")));
}

TEST_F(Endings, WindowDeletedFromTheBoxOfACOMPort_TouchesNothing) {
  OpenOnSerial1();
  mLines[1]->FailOpening(KrResult::Code::Busy);
  Click(id::kCOMPortLink);
  During([this] { mWindow.reset(); });

  Pick(Get<QComboBox>(id::kCOMPort), COM3);

  ExpectActed();
}

TEST_F(Endings, WindowDeletedFromTheBoxOfUnknownRates_EndsTheLink) {
  OpenOnSerial1();
  Click(id::kCOMPortLink);
  During([this] { mWindow.reset(); });

  Pick(Get<QComboBox>(id::kCOMPort), COM3);

  ExpectActed();
  EXPECT_FALSE(mLines[1]->IsOpen());
}

TEST_F(Endings, WindowReopenedFromTheBoxOfUnknownRates_IsAnotherOne) {
  OpenOnSerial1();
  Click(id::kCOMPortLink);
  During([this] {
    ASSERT_TRUE(mWindow->Close().IsOK());
    ASSERT_TRUE(mWindow->ShowModeless(0).IsOK());
  });

  Pick(Get<QComboBox>(id::kCOMPort), COM3);

  ExpectActed();
  EXPECT_EQ(Get<QComboBox>(id::kDevicePort).currentIndex(), -1);
  EXPECT_TRUE(mLines[1]->IsOpen()) << "the link goes on";
}

TEST_F(Endings, DeviceTakenOutWhileAPortIsConfigured_NothingIsApplied) {
  SetRates({"9600", "115200"});
  OpenOnSerial1();
  Link(COM3);
  DuringNextModalLoop([this](QWidget& aDialog) {
    mHasActed = true;
    ASSERT_TRUE(mWindow->SetDevice(nullptr).IsOK());
    QTest::keyClick(&aDialog, Qt::Key_Return);
  });

  Click(id::kConfigure);

  ExpectActed();
  EXPECT_EQ(GetText(id::kState), "There is no device.");
}

TEST_F(Endings, WindowDeletedWhileAPortIsConfigured_TouchesNothing) {
  SetRates({"9600", "115200"});
  OpenOnSerial1();
  Link(COM3);
  During([this] { mWindow.reset(); });

  Click(id::kConfigure);

  ExpectActed();
  EXPECT_FALSE(mLines[1]->IsOpen());
}

TEST_F(Endings, WindowDeletedFromTheBoxOfARefusedConfiguration_TouchesNothing) {
  SetRates({"9600"});
  OpenOnSerial1();
  ASSERT_THAT(Load({{"Serial1", "COMPort"}, {"Serial1Port", "COM3"}, {"Serial1COMPortBaudRate", "57600"}}), IsEmpty());
  DuringNextModalLoop([this](QWidget& aDialog) {
    During([this] { mWindow.reset(); });
    QTest::keyClick(&aDialog, Qt::Key_Return);
  });

  Click(id::kConfigure);

  ExpectActed();
}

TEST_F(Endings, ListThatIsOpenWhenTheDeviceGoes_Closes) {
  Open();
  auto& list = Get<QComboBox>(id::kDevicePort);
  list.showPopup();
  ASSERT_TRUE(WaitFor([&] { return list.view()->isVisible(); }));

  ASSERT_TRUE(mWindow->SetDevice(nullptr).IsOK());

  EXPECT_FALSE(list.view()->isVisible());
}

} // namespace krgui
