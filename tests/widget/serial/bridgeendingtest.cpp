// The serial bridge manager closed, deleted or given another device while a message box or dialog of it is open, and
// bridges that outlive their window.

#include "bridgefixture.h"

#include <QAbstractItemView>
#include <QPointer>

namespace krgui {

namespace {

using krtest::BridgeHost;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

const std::string kEnded = "ConnectionLost: The bridge on Serial1 was ended while the dialog was open.";

class Endings : public BridgeTest {
protected:
  /// What is done while the next box or dialog is open; it has then gone, or is answered by Escape.
  template <typename Action>
  void During(Action aAction, Qt::Key aAnswer = Qt::Key_Escape) {
    DuringNextModalLoop([this, aAction, aAnswer](QWidget& aBox) {
      const QPointer<QWidget> box(&aBox);
      mHasActed = true;
      aAction();
      if (box && box->isVisible())
        QTest::keyClick(box, aAnswer);
    });
  }
  /// Links Serial1, which can have two rates, to COM3.
  void OpenLinked() {
    SetRates({"9600", "115200"});
    OpenOnSerial1();
    Link(COM3);
  }
  /// Chooses the second rate in the configuration dialog, does something, and answers the dialog with OK and so many
  /// boxes.
  template <typename Action>
  void ConfigureDuring(int aBoxes, Action aAction) {
    DuringNextModalLoop([this, aBoxes, aAction](QWidget& aDialog) {
      mHasActed = true;
      aDialog.findChild<QComboBox*>(QStringLiteral("control%1").arg(id::kBaudRate))->setCurrentIndex(1);
      aAction();
      AnswerBoxes(aBoxes);
      QTest::keyClick(&aDialog, Qt::Key_Return);
    });
    Click(id::kConfigure);
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
  EXPECT_EQ(GetKind(), "None");
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

TEST_F(Endings, DeviceTakenOutWhileAPortIsConfigured_IsToldAndNothingIsApplied) {
  OpenLinked();
  ConfigureDuring(1, [this] { ASSERT_TRUE(mWindow->SetDevice(nullptr).IsOK()); });

  ExpectActed();
  EXPECT_THAT(mBoxes,
              ElementsAre("Serial Communication Bridge: Unable to change serial COM port configuration.\n" + kEnded));
  EXPECT_EQ(GetText(id::kState), "There is no device.");
}

TEST_F(Endings, DeviceLostAndBackWhileAPortIsConfigured_IsApplied) {
  OpenLinked();
  ConfigureDuring(0, [this] {
    ASSERT_TRUE(mWindow->SetDevice(nullptr).IsOK());
    ASSERT_TRUE(mWindow->SetDevice(&mDevice).IsOK());
    ASSERT_THAT(Load({{"Serial1", "COMPort"}, {"Serial1Port", "COM3"}}), IsEmpty());
  });

  ExpectActed();
  EXPECT_THAT(mBoxes, IsEmpty());
  EXPECT_THAT(Save(), Contains(Pair("Serial1COMPortBaudRate", "115200")));
}

TEST_F(Endings, OtherSettingsLoadedWhileAPortIsConfigured_AreNotTouched) {
  OpenLinked();
  ConfigureDuring(1, [this] { ASSERT_THAT(Load({{"Serial1", "COMPort"}, {"Serial1Port", "COM1"}}), IsEmpty()); });

  ExpectActed();
  EXPECT_EQ(mBoxes.size(), 1U);
  EXPECT_THAT(Save(), Contains(Pair("Serial1COMPortBaudRate", "9600")));
  EXPECT_EQ(GetSelected(id::kCOMPort), "COM1");
}

TEST_F(Endings, AnotherDeviceWhileAPortIsConfigured_IsNotTouched) {
  krtest::SerialAdapter other;
  other.text = "Another one";
  other.enumerations = mDevice.enumerations;
  other.AddLine(1);
  OpenLinked();
  ConfigureDuring(1, [&] {
    ASSERT_TRUE(mWindow->SetDevice(&other).IsOK());
    ASSERT_THAT(Load({{"Serial1", "COMPort"}, {"Serial1Port", "COM3"}}), IsEmpty());
  });

  ExpectActed();
  EXPECT_EQ(mBoxes.size(), 1U);
  EXPECT_THAT(Save(), Contains(Pair("Serial1COMPortBaudRate", "9600")));
  mWindow.reset();
}

TEST_F(Endings, DeviceLostAndBackWhileTheRateIsAskedFor_IsToldAndNothingIsPublished) {
  OpenOnSerial1();
  During(
      [this] {
        const Settings kept = Save();
        EXPECT_THAT(kept, IsEmpty()) << "nobody has said the rate yet";
        ASSERT_TRUE(mWindow->SetDevice(nullptr).IsOK());
        ASSERT_TRUE(mWindow->SetDevice(&mDevice).IsOK());
        ASSERT_THAT(Load(kept), IsEmpty());
        AnswerBoxes(1);
      },
      Qt::Key_Return);

  Click(id::kCameraLink);

  ExpectActed();
  EXPECT_THAT(mBoxes, ElementsAre("Serial Communication Bridge: Unable to start Camera Link DLL bridge.\n" + kEnded));
  EXPECT_THAT(BridgeHost::GetPublished(), IsEmpty());
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
