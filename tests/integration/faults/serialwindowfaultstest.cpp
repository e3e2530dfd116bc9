// The serial terminal, the serial bridge manager and the camera bridge manager, closed at each step of what they do
// with a device, and on a device that fails at each step.
//
// Beside the cases here, endings at message boxes and dialogs are in widget/serial/terminalendingtest and
// bridgeendingtest and widget/camerabridge/cameraendingtest and camerawaitsendtest.

#include "windowcase.h"

#include "bridgehost.h"
#include "browser/propertiesgrid.h"
#include "camerabridge/camerabridgeids.h"
#include "faultygrabber.h"
#include "krcamerabridge/krcamerabridge.h"
#include "krdevice/krdeviceadapter.h"
#include "krgui/krcamerabridgemanagerwnd.h"
#include "krgui/krserialbridgemanagerwnd.h"
#include "krgui/krserialterminalwnd.h"
#include "serial/rollingedit.h"
#include "serial/serialbridgeids.h"
#include "serial/terminalids.h"
#include "temporaryfolder.h"

namespace krtest {

namespace {

// Of a line, silence is no failure.
bool IsToldByALine(const WindowFaultRow& aRow) {
  return aRow.fault != DeviceFault::StaysSilent;
}

class FaultyTerminal : public WindowCase<KrSerialTerminalWnd> {
protected:
  FaultyTerminal() {
    if (!GetParam().closesWindow)
      mNames.push_back("Connection lost"); // Said of the device in the window's title.
    mAdvice.clear();
  }
  std::u16string GetTranscript() const {
    const auto* const transcript = IsOpen() ? mWindow->GetWidget()->findChild<krgui::RollingEdit*>() : nullptr;
    return transcript ? std::u16string(transcript->GetText()) : std::u16string();
  }
  // The line below the transcript tells of it.
  std::string FindTrouble() const override {
    const std::string status = GetLabel(krgui::terminalid::kStatus);
    return status == "Open" ? std::string() : status;
  }
  // Sends a question and a file to the instrument.
  void Converse() {
    namespace id = krgui::terminalid;
    if (!Click(id::kClear))
      return;
    Find<QLineEdit>(id::kData)->setText(QStringLiteral("*IDN?"));
    if (!Find<QAbstractButton>(id::kCR)->isChecked())
      Click(id::kCR);
    if (!Click(id::kSend))
      return;
    mIsDone = Await([this] {
      AskAgain();
      return GetTranscript().find(u"Simulated Instrument,") != std::u16string::npos;
    });
    // A file takes a second, so that not each fault is tried with one; closing while one is sent is
    // terminalendingtest's.
    const bool isFileSent = !GetParam().closesWindow && GetParam().fault == DeviceFault::Vanishes;
    if (mIsDone && isFileSent) {
      Find<QLineEdit>(id::kFile)->setText(QString::fromStdString(mFile));
      mIsDone = Click(id::kSendFile) &&
                Await([this] { return Find<QAbstractButton>(krgui::terminalid::kSendFile)->isEnabled(); });
    }
    if (IsToldByALine(GetParam()))
      AwaitLossTold();
  }
  // A message that the line refused is not answered, and the user sends it again.
  void AskAgain() {
    if (mSteps.HasFailed() && !std::exchange(mIsAskedAgain, true))
      Find<QAbstractButton>(krgui::terminalid::kSend)->click();
  }
  KrResult UseTerminal(KrDevice& aDevice) {
    mIsDone = false;
    mIsAskedAgain = false;
    KrDeviceAdapter adapter(aDevice);
    KrResult result = mWindow->SetDevice(&adapter);
    if (result.IsOK())
      result = UseOpened([this] { Converse(); }, mIsDone);
    (void)mWindow->SetDevice(nullptr);
    return result;
  }

private:
  const TemporaryFolder mFolder;
  const std::string mFile = [this] {
    TemporaryFolder::WriteFile(mFolder.GetFile("commands"), "HELP\rVALUE?\r");
    return mFolder.GetFile("commands");
  }();
  bool mIsDone = false;
  bool mIsAskedAgain = false;
};

class FaultyBridges : public WindowCase<KrSerialBridgeManagerWnd> {
protected:
  FaultyBridges() { mHost.AddPort(3); }

  // Links the device's first port to a COM port, and talks to the instrument by it.
  void LinkAndTalk() {
    namespace id = krgui::bridgeid;
    // Choosing a kind for the first port takes its selection away.
    if (!Pick(id::kDevicePort, kPort) || !Click(id::kCOMPortLink) || !Pick(id::kDevicePort, kPort) ||
        !Pick(id::kCOMPort, "COM3"))
      return;
    mHost.Send(3, kQuestion);
    std::string received;
    mIsDone = Await([&] {
      received += mHost.Receive(3);
      // What comes back as it was sent met a port that was not open yet; what a fault hurt is not answered.
      const bool isLost =
          received.find("*IDN?") != std::string::npos || (mSteps.HasFailed() && !std::exchange(mIsAskedAgain, true));
      if (isLost) {
        received.clear();
        mHost.Send(3, kQuestion);
      }
      return received.find("Simulated Instrument,") != std::string::npos;
    });
    if (IsToldByALine(GetParam()))
      AwaitLossTold();
    if (mIsDone && CanGoOn())
      Click(id::kNone);
  }
  std::string FindTrouble() const override {
    const std::string state = GetLabel(krgui::bridgeid::kState);
    return state.find("failed") != std::string::npos ? state : std::string();
  }
  KrResult UseBridges(KrDevice& aDevice) {
    mIsDone = false;
    mIsAskedAgain = false;
    KrDeviceAdapter adapter(aDevice);
    KrResult result = mWindow->SetDevice(&adapter);
    if (result.IsOK())
      result = UseOpened([this] { LinkAndTalk(); }, mIsDone);
    EXPECT_TRUE(mWindow->SetDevice(nullptr).IsOK());
    (void)mHost.Receive(3); // What came too late.
    return result;
  }

  static constexpr const char* kPort = "Serial0";
  static constexpr const char* kQuestion = "*IDN?\r";
  BridgeHost mHost;
  bool mIsDone = false;
  bool mIsAskedAgain = false;
};

class FaultyCameraBridges : public WindowCase<KrCameraBridgeManagerWnd> {
protected:
  FaultyCameraBridges() : WindowCase(MakeFaultyGrabberLab()) {}

  const krgui::PropertiesGrid* GetGrid() const {
    return IsOpen() ? mWindow->GetWidget()->findChild<krgui::PropertiesGrid*>() : nullptr;
  }
  bool HasParameters() const { return GetGrid() && GetGrid()->model()->rowCount() > 0; }
  // What the line of state, or a row of the camera's parameters, says of a failure.
  std::string FindTrouble() const override {
    if (const std::string state = GetLabel(krgui::cameraid::kState); !state.empty())
      return state;
    if (GetGrid())
      for (const auto& feature : GetGrid()->GetTree().GetFeatures())
        if (!feature->GetError().IsEmpty())
          return feature->GetError().ToUtf8();
    return {};
  }
  // Connects the camera behind the first port, and looks at its parameters.
  void Connect() {
    namespace id = krgui::cameraid;
    if (!Await([this] { return Find<QAbstractButton>(krgui::cameraid::kGenCP)->isEnabled(); }) || !Click(id::kGenCP))
      return;
    const auto* const ids = Find<QComboBox>(id::kGenCPXML);
    if (ids->count() > 0 && Click(id::kGenCPConnect))
      mIsConnected = HasParameters();
    if (mIsConnected && IsToldByALine(GetParam()))
      AwaitLossTold();
  }
  KrResult UseBridges(KrDevice& aDevice) {
    mIsConnected = false;
    KrResult result = mWindow->SetDevice(&aDevice);
    if (result.IsOK())
      result = UseOpened([this] { Connect(); }, mIsConnected);
    EXPECT_TRUE(mWindow->SetDevice(nullptr).IsOK());
    return result;
  }

  bool mIsConnected = false;
};

} // namespace

TEST_P(FaultyTerminal, AtEachStep_EndsOrSaysSoAndTalksAfterwards) {
  TryWindowAtEachStep([this](KrDevice& aDevice) { return UseTerminal(aDevice); });
}

INSTANTIATE_TEST_SUITE_P(Faults, FaultyTerminal, testing::ValuesIn(kWindowFaults), NameRow<WindowFaultRow>);

TEST_P(FaultyBridges, AtEachStep_EndsOrSaysSoAndBridgesAfterwards) {
  TryWindowAtEachStep([this](KrDevice& aDevice) { return UseBridges(aDevice); });
}

INSTANTIATE_TEST_SUITE_P(Faults, FaultyBridges, testing::ValuesIn(kWindowFaults), NameRow<WindowFaultRow>);

TEST_P(FaultyCameraBridges, AtEachStep_EndsOrSaysSoAndConnectsAfterwards) {
  TryWindowAtEachStep([this](KrDevice& aDevice) { return UseBridges(aDevice); });
}

INSTANTIATE_TEST_SUITE_P(Faults, FaultyCameraBridges, testing::ValuesIn(kWindowFaults), NameRow<WindowFaultRow>);

} // namespace krtest
