// The camera bridge manager on a frame grabber that itself is slow to answer, or silent.

#include "camerafixture.h"

#include "gate.h"
#include "krpersistence/krconfigurationreader.h"
#include "krpersistence/krconfigurationwriter.h"
#include "steppedtransport.h"

#include <QProgressBar>

#include <functional>

namespace krgui {

namespace {

/// More than a moment, and less than what an access may take, in milliseconds.
constexpr std::uint32_t kSlowMs = 600;

class Grabber : public CameraTest {
protected:
  Grabber() { EXPECT_TRUE(KrFindSimulatedFaults(kGrabberMAC, mFaults).IsOK()); }
  ~Grabber() override { mFaults->EndRegisterFaults(); }

  /// Does this once the window waits for the device.
  void WhileItWaits(const std::function<void(QWidget& aDialog)>& aAction) {
    OnNextDialog("progress", [this, aAction](QWidget& aDialog) {
      ++mWaits;
      EXPECT_NE(aDialog.findChild<QProgressBar*>(), nullptr);
      aAction(aDialog);
    });
  }
  static void Cancel(QWidget& aDialog) { QTest::keyClick(&aDialog, Qt::Key_Escape); }
  bool IsPainting() { return !mWindow->GetWidget()->grab().isNull(); }
  bool IsPoCLOn() {
    bool isOn = false;
    EXPECT_TRUE(mDevice->GetParameters()->GetBoolean("PoclEnable")->GetValue(isOn).IsOK());
    return isOn;
  }
  /// The device answers again, which it does not do at once after it was silent.
  void EndSilence() {
    mFaults->EndRegisterFaults();
    ASSERT_TRUE(WaitFor([this] {
      bool isOn = false;
      KrGenParameterArray* const parameters = mDevice->GetParameters();
      return parameters && parameters->GetBoolean("PoclEnable")->GetValue(isOn).IsOK();
    }));
  }
  /// What an empty setup is.
  static KrConfigurationReader MakeEmptySetup() {
    KrConfigurationWriter writer;
    EXPECT_TRUE(writer.Store("CameraBridgeIndex", {}).IsOK());
    return KrConfigurationReader(writer);
  }

  std::shared_ptr<KrSimulatedFaults> mFaults;
  int mWaits = 0;
};

/// A device whose answer the test holds back, however long a window takes to come up meanwhile.
class HeldGrabber : public Grabber {
protected:
  HeldGrabber() {
    mDevice.reset();
    krsystem::UnregisterTransport(mLab);
    krsystem::RegisterTransport(mHeldLab);
    EXPECT_TRUE(LabTest::Open(kGrabberMAC, mDevice).IsOK());
  }
  ~HeldGrabber() override {
    mGate.Open();
    mWindow.reset();
    mDevice.reset();
    krsystem::UnregisterTransport(mHeldLab);
  }

  /// What is asked of it next is answered when the gate is opened.
  void Hold() {
    mSteps.BeginWithFault(0, {.cause = [this] { mGate.Wait({}); }});
  }

  Gate mGate;

private:
  krtest::Steps mSteps;
  const std::shared_ptr<krsystem::ITransport> mHeldLab = krtest::MakeSteppedTransport(mLab, mSteps);
};

} // namespace

TEST_F(Grabber, SlowDevice_HasItsPortsLookedForInAWindowThatPaints) {
  ASSERT_TRUE(mWindow->ShowModeless(0).IsOK());
  bool isPainted = false;
  mFaults->SlowRegisters(kSlowMs);

  WhileItWaits([&](QWidget&) {
    isPainted = IsPainting();
    EXPECT_EQ(mWindow->GetBridgeCount(), 0);
    EXPECT_FALSE(IsEnabled(id::kGenCP));
    mFaults->EndRegisterFaults();
  });
  ASSERT_TRUE(mWindow->SetDevice(mDevice.get()).IsOK());

  EXPECT_EQ(mWaits, 1);
  EXPECT_TRUE(isPainted);
  EXPECT_THAT(GetEntries(id::kDevicePort), testing::ElementsAre("Serial0", "Serial1", "Bulk0"));
  EXPECT_THAT(GetEntries(id::kSource), testing::SizeIs(3));
  EXPECT_TRUE(IsChecked(id::kPoCL));
}

TEST_F(Grabber, SearchForPortsThatIsCancelled_LeavesNoneUntilTheWindowOpensAgain) {
  ASSERT_TRUE(mWindow->ShowModeless(0).IsOK());
  mFaults->SilenceRegisters();

  WhileItWaits(Cancel);
  ASSERT_TRUE(mWindow->SetDevice(mDevice.get()).IsOK());

  EXPECT_EQ(mWaits, 1);
  EXPECT_EQ(mWindow->GetBridgeCount(), 0);
  EXPECT_FALSE(IsEnabled(id::kDevicePort));
  ASSERT_TRUE(mWindow->Close().IsOK());

  EndSilence();
  ASSERT_TRUE(mWindow->ShowModeless(0).IsOK());
  EXPECT_TRUE(WaitFor([this] { return GetEntries(id::kSource).size() == 3; }));
  EXPECT_THAT(GetEntries(id::kDevicePort), testing::SizeIs(3));
}

TEST_F(Grabber, ClosedWhilePortsAreLookedFor_LooksForThemWhenItLoads) {
  ASSERT_TRUE(mWindow->ShowModeless(0).IsOK());
  mFaults->SilenceRegisters();

  WhileItWaits([this](QWidget&) {
    EXPECT_TRUE(mWindow->Close().IsOK());
    mFaults->EndRegisterFaults();
  });
  ASSERT_TRUE(mWindow->SetDevice(mDevice.get()).IsOK());

  EXPECT_EQ(mWaits, 1);
  EXPECT_EQ(mWindow->GetWidget(), nullptr);
  KrConfigurationReader reader = MakeEmptySetup();
  KrStringList errors;
  EXPECT_TRUE(mWindow->Load(reader, errors).IsOK());
  EXPECT_EQ(mWindow->GetBridgeCount(), 3);
}

TEST_F(Grabber, DeletedWhilePortsAreLookedFor_EndsThat) {
  ASSERT_TRUE(mWindow->ShowModeless(0).IsOK());
  mFaults->SilenceRegisters();

  WhileItWaits([this](QWidget&) { mWindow.reset(); });
  (void)mWindow->SetDevice(mDevice.get()); // Which of its ends it tells of, is gone with it.

  EXPECT_EQ(mWaits, 1);
}

TEST_F(Grabber, DeviceTakenOutWhileItsPortsAreLookedFor_HasNone) {
  ASSERT_TRUE(mWindow->ShowModeless(0).IsOK());
  mFaults->SilenceRegisters();

  WhileItWaits([this](QWidget&) {
    EXPECT_TRUE(mWindow->SetDevice(nullptr).IsOK());
    mDevice.reset();
  });
  ASSERT_TRUE(mWindow->SetDevice(mDevice.get()).IsOK());

  EXPECT_EQ(mWaits, 1);
  EXPECT_EQ(mWindow->GetBridgeCount(), 0);
  EXPECT_THAT(GetEntries(id::kDevicePort), testing::IsEmpty());
}

TEST_F(Grabber, DeviceSetAnewWhileItsPortsAreLookedFor_HasEachPortOnce) {
  ASSERT_TRUE(mWindow->ShowModeless(0).IsOK());
  mFaults->SilenceRegisters();

  WhileItWaits([this](QWidget&) {
    mFaults->EndRegisterFaults();
    EXPECT_TRUE(mWindow->SetDevice(mDevice.get()).IsOK());
  });
  ASSERT_TRUE(mWindow->SetDevice(mDevice.get()).IsOK());

  EXPECT_EQ(mWaits, 1);
  EXPECT_THAT(GetEntries(id::kDevicePort), testing::ElementsAre("Serial0", "Serial1", "Bulk0"));
}

TEST_F(Grabber, SilentDevice_LetsTheWindowOpenAndIsAskedAgainForTheNextPort) {
  ASSERT_TRUE(mWindow->SetDevice(mDevice.get()).IsOK());
  mFaults->SilenceRegisters();

  ASSERT_TRUE(mWindow->ShowModeless(0).IsOK());

  EXPECT_THAT(GetEntries(id::kDevicePort), testing::SizeIs(3));
  EXPECT_FALSE(IsEnabled(id::kPoCL));
  // The wait is not seen where the window takes longer to paint than the device may take to answer.
  WhileItWaits(Cancel);
  EndSilence();
  OnNextDialog("progress", nullptr);
  Pick(id::kDevicePort, "Serial1");
  EXPECT_TRUE(WaitFor([this] { return IsEnabled(id::kPoCL) && IsChecked(id::kPoCL); }));
  EXPECT_THAT(GetEntries(id::kSource), testing::SizeIs(3));
}

TEST_F(Grabber, DeviceThatDidNotAnswerInTime_ShowsItsSourcesWithTheNextPort) {
  ASSERT_TRUE(mWindow->SetDevice(mDevice.get()).IsOK());
  mFaults->SilenceRegisters();
  ASSERT_TRUE(mWindow->ShowModeless(0).IsOK());
  QCoreApplication::processEvents(); // It is asked, or was.
  EndSilence();

  Pick(id::kDevicePort, "Serial1");

  EXPECT_TRUE(WaitFor([this] { return GetEntries(id::kSource).size() == 3 && IsEnabled(id::kPoCL); }));
}

TEST_F(Grabber, SlowDevice_HasItsPowerSwitchedInAWindowThatPaints) {
  Open();
  bool isPainted = false;
  mFaults->SlowRegisters(kSlowMs);

  WhileItWaits([&](QWidget&) { isPainted = IsPainting(); });
  Click(id::kPoCL);

  EXPECT_EQ(mWaits, 1);
  EXPECT_TRUE(isPainted);
  EXPECT_FALSE(IsChecked(id::kPoCL));
  EXPECT_FALSE(IsPoCLOn());
}

TEST_F(Grabber, SwitchingPowerThatIsCancelled_ShowsWhatTheDeviceHas) {
  Open();
  mFaults->SlowRegisters(kSlowMs);

  WhileItWaits([this](QWidget& aDialog) {
    mFaults->SlowRegisters(0);
    Cancel(aDialog);
  });
  Click(id::kPoCL);
  EXPECT_EQ(mWaits, 1);
  EXPECT_TRUE(IsChecked(id::kPoCL)) << "as it was, as long as nobody knows";

  EXPECT_TRUE(WaitFor([this] { return !IsChecked(id::kPoCL); }));
  EXPECT_TRUE(IsEnabled(id::kPoCL));
  EXPECT_FALSE(IsPoCLOn());
}

TEST_F(Grabber, ClosedAndDeletedWhilePowerIsSwitched_DoNotWaitForTheDevice) {
  Open();
  mFaults->SilenceRegisters();

  WhileItWaits([this](QWidget&) { EXPECT_TRUE(mWindow->Close().IsOK()); });
  Click(id::kPoCL);
  EXPECT_EQ(mWaits, 1);
  EXPECT_EQ(mWindow->GetWidget(), nullptr);
  EndSilence();
  ASSERT_TRUE(mWindow->ShowModeless(0).IsOK());
  AwaitAnswers();
  mFaults->SilenceRegisters();

  WhileItWaits([this](QWidget&) { mWindow.reset(); });
  Click(id::kPoCL);

  EXPECT_EQ(mWaits, 2);
}

TEST_F(HeldGrabber, DeviceThatDoesNotAnswer_LetsItsBridgesBeSavedMeanwhile) {
  ASSERT_TRUE(mWindow->SetDevice(mDevice.get()).IsOK());
  Hold();
  KrConfigurationWriter writer;
  KrResult saved = KrResult::Code::Failed;

  WhileItWaits([&](QWidget& aDialog) {
    saved = mWindow->Save(writer);
    Cancel(aDialog);
  });
  ASSERT_TRUE(mWindow->ShowModeless(0).IsOK());
  ASSERT_TRUE(WaitFor([this] { return mWaits == 1; }));

  EXPECT_TRUE(mGate.IsReached());
  EXPECT_TRUE(saved.IsOK()) << saved.GetDescription().CStr();
}

} // namespace krgui
