#pragma once
// A user at the camera bridges of the viewer, which runs as "krviewer --simulate --device sim-grabber" does. What he
// set is read again when the viewer has ended, by a connection of the test's own.

#include "await.h"
#include "browser/browseruser.h"
#include "camerabridge/camerabridgeids.h"
#include "commandline.h"
#include "deviceselection.h"
#include "krcamerabridge/krcamerabridge.h"
#include "krdevice/krdevice.h"
#include "krgenicam/krgenparameterarray.h"
#include "krtransport/krsimulatedfaults.h"
#include "krtransport/krtransport.h"
#include "viewerlooks.h"
#include "window/viewer.h"
#include "windowhands.h"

#include <QLineEdit>

#include <gmock/gmock.h>

#include <cstdlib>
#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace bridge = krgui::cameraid;

inline const QString kManager = "Frame Grabber Camera Bridge";
inline const QString kFileDialog = "Select Tolvan Camera File";
inline const QString kTextCameraFile = KR_CAMERA_FILES "/simulated-camera.yml";
inline constexpr const char* kGrabberMAC = "02:4b:52:00:78:12";
/// A line of 9600 baud needs its time, and so does a machine that has other things to do.
inline const int kLineLimitMs = 3 * krtest::GetGenerousMs();

// Looks; user-interface thread alone.

/// Of a label, an edit or a list of the manager.
inline QString GetShownText(int aControl) {
  if (const auto* const label = FindControlOf<QLabel>(kManager, aControl))
    return label->text();
  if (const auto* const edit = FindControlOf<QLineEdit>(kManager, aControl))
    return edit->text();
  const auto* const list = FindControlOf<QComboBox>(kManager, aControl);
  return list ? list->currentText() : QString();
}

/// The dialog that tells what is under way; null where there is none.
inline QWidget* FindWait() {
  for (QWidget* const window : QApplication::topLevelWidgets())
    if (window->objectName() == "progress" && window->isVisible())
      return window;
  return nullptr;
}

/// What a user does at the manager again and again.
class CameraHands {
public:
  explicit CameraHands(UserHands& aUser) : mUser(aUser) {}

  /// Opens the manager by its key.
  bool Open() const {
    mUser.Press("ctrl+k");
    return mUser.AwaitWindow(kManager) && mUser.AwaitEnabled(kManager, bridge::kDevicePort);
  }
  void PickPort(const QString& aPort) const { Pick(mUser, kManager, bridge::kDevicePort, aPort); }
  void ChooseKind(int aButton) const {
    mUser.ClickMark(kManager, aButton);
    AwaitChecked(mUser, kManager, aButton);
  }
  /// Waits until the camera was asked and this control can be used.
  bool AwaitReady(int aControl) const {
    return mUser.Await(
        "control " + QString::number(aControl) + " usable",
        [=] {
          const auto* const control = FindControlOf<QWidget>(kManager, aControl);
          return control && control->isEnabled() && !FindWait() && control->window()->isActiveWindow();
        },
        kLineLimitMs);
  }
  bool AwaitText(int aControl, const QString& aText) const {
    return AwaitShown(aControl, '"' + aText + '"', [&](const QString& aShown) { return aShown == aText; });
  }
  bool AwaitTextWith(int aControl, const QString& aPart) const {
    return AwaitShown(aControl, "a text with " + aPart, [&](const QString& aShown) { return aShown.contains(aPart); });
  }
  /// Waits for the status of a camera that is connected; gives how many parameters it tells of, 0 for none.
  int AwaitConnected(int aStatus) const {
    int count = 0;
    mUser.Await(
        "a status with parameters",
        [&] {
          const QString status = GetShownText(aStatus);
          const QString begin = "GenApi interface containing ";
          const QString end = " parameters available";
          if (status.startsWith(begin) && status.endsWith(end))
            count = status.mid(begin.size(), status.size() - begin.size() - end.size()).toInt();
          return count > 0 && !FindWait();
        },
        kLineLimitMs);
    EXPECT_TRUE(mUser.AwaitWindow(kManager));
    return count;
  }
  /// Waits for the dialog that says that a camera is asked.
  bool AwaitWait() const { return mUser.AwaitActive("a camera that is asked", FindWait); }
  bool AwaitNoWait() const {
    return mUser.Await(
        "no camera that is asked", [] { return !FindWait(); }, kLineLimitMs);
  }
  /// Waits until the features of no camera are shown.
  bool AwaitNoFeatures() const { return mUser.AwaitNoRow(kManager, browseruser::kGrid, "Gain"); }
  /// Types a file's path into the dialog that asks for it.
  bool EnterFile(const QString& aPath) const {
    if (!mUser.AwaitWindow(kFileDialog))
      return false;
    mUser.Type(aPath);
    mUser.Press("Return");
    return mUser.AwaitNoWindow(kFileDialog) && mUser.AwaitWindow(kManager) && AwaitText(bridge::kPath, aPath);
  }
  /// Connects the GenCP camera of the port that is picked; gives how many parameters it tells of, 0 for none.
  int ConnectGenCP() const {
    ChooseKind(bridge::kGenCP);
    if (!AwaitReady(bridge::kGenCPConnect))
      return 0;
    mUser.Click(kManager, bridge::kGenCPConnect);
    return AwaitConnected(bridge::kGenCPStatus);
  }
  /// The same for the camera that speaks texts, by its file.
  int ConnectTextCamera() const {
    ChooseKind(bridge::kCameraFile);
    mUser.Click(kManager, bridge::kBrowse);
    if (!EnterFile(kTextCameraFile))
      return 0;
    mUser.Click(kManager, bridge::kLoad);
    return AwaitConnected(bridge::kCameraFileStatus);
  }

private:
  bool AwaitShown(int aControl, const QString& aWhat, const std::function<bool(const QString&)>& aIsMeant) const {
    QString shown;
    const bool isShown = mUser.Await(
        aWhat,
        [&] {
          shown = GetShownText(aControl);
          return aIsMeant(shown);
        },
        kLineLimitMs);
    EXPECT_TRUE(isShown) << shown.toStdString();
    return isShown;
  }

  UserHands& mUser;
};

class CameraBridgeUser : public testing::Test {
protected:
  void SetUp() override {
    ASSERT_EQ(setenv("KRGUI_CLPROTOCOL_HOST", KR_TEST_HOST, 1), 0);
    ASSERT_EQ(setenv("GENICAM_CLPROTOCOL", KR_TEST_DRIVERS, 1), 0);
    QString error;
    ASSERT_EQ(krviewer::ParseCommandLine({"--simulate", "--device", "sim-grabber"}, mCommandLine, error),
              krviewer::CommandLineStatus::Run);
    ASSERT_TRUE(
        KrInstallTransports({.gigEVision = false, .usb3Vision = false, .simulation = mCommandLine.simulate}).IsOK());
    mSystem.SetSubnetBroadcastEnabled(false);
    ASSERT_TRUE(krapps::SelectDevice(mSystem, mCommandLine.devices.constFirst().toStdString(), mInfo).IsOK());
    ASSERT_TRUE(KrFindSimulatedFaults(kGrabberMAC, mFaults).IsOK());
  }
  void TearDown() override {
    if (!mFaults)
      return;
    mFaults->EndSerialFaults();
    mFaults->Return();
  }

  /// Runs the viewer, lets the user open the manager and do this, and ends the viewer.
  void Run(const std::function<void(UserHands&, const CameraHands&)>& aScript) {
    krviewer::Viewer viewer(mCommandLine);
    viewer.Begin();
    viewer.Open(krviewer::BorrowCamera(*mInfo));
    RunWithUser([&] { EXPECT_EQ(viewer.Run(), 0); },
                [&](UserHands& aUser) {
                  const CameraHands hands(aUser);
                  if (aUser.Await("the viewer",
                                  [] { return IsToolOffered(kCameraBridgesKey) && FindViewer()->isActiveWindow(); }) &&
                      hands.Open())
                    aScript(aUser, hands);
                  EndViewer(aUser);
                });
  }
  /// The bridge of a port of the grabber, which nobody else has open.
  KrCameraBridge& OpenBridge(KrDeviceSerial aPort) {
    EXPECT_TRUE(KrDevice::Open(*mInfo, KrDeviceAccess::Control, mDevice).IsOK());
    mBridge = std::make_unique<KrCameraBridge>(mDevice.get(), aPort, nullptr);
    return *mBridge;
  }
  KrCameraBridge& ConnectGenCP() {
    KrCameraBridge& bridge = OpenBridge(KrDeviceSerial::Serial0);
    KrStringList ids;
    EXPECT_TRUE(bridge.GetGenCPXMLIDs(ids).IsOK());
    EXPECT_TRUE(!ids.IsEmpty() && bridge.ConnectGenCP(ids[0]).IsOK());
    return bridge;
  }
  KrCameraBridge& ConnectCLProtocol() {
    KrCameraBridge& bridge = OpenBridge(KrDeviceSerial::Bulk0);
    KrStringList templates;
    KrString camera;
    KrStringList ids;
    EXPECT_TRUE(KrCameraBridge::GetCLProtocolTemplates(templates).IsOK());
    EXPECT_TRUE(!templates.IsEmpty() && bridge.ProbeCLProtocol(templates[0], camera, ids).IsOK());
    EXPECT_TRUE(!ids.IsEmpty() && bridge.ConnectCLProtocol(templates[0], ids[0]).IsOK());
    return bridge;
  }
  KrCameraBridge& ConnectCameraFile() {
    KrCameraBridge& bridge = OpenBridge(KrDeviceSerial::Serial1);
    EXPECT_TRUE(bridge.ConnectTolvanCameraFile(kTextCameraFile.toStdString()).IsOK());
    return bridge;
  }
  void EndBridge() {
    mBridge.reset();
    mDevice.reset();
  }
  /// What the camera has for a feature, and how many parameters its bridge has, if that is to be known; ends the
  /// bridge.
  void ExpectCamera(KrCameraBridge& aBridge, const char* aFeature, double aValue, std::optional<int> aCount = {}) {
    KrGenParameterArray* const parameters = aBridge.GetParameters();
    KrGenFloat* const feature = parameters ? parameters->GetFloat(aFeature) : nullptr;
    double value = 0;
    EXPECT_TRUE(feature && feature->GetValue(value).IsOK());
    EXPECT_EQ(value, aValue);
    if (aCount) {
      EXPECT_EQ(parameters ? static_cast<int>(parameters->GetCount()) : 0, *aCount);
    }
    EndBridge();
  }

  krviewer::CommandLine mCommandLine;
  KrSystem mSystem;
  const KrDeviceInfo* mInfo = nullptr;
  std::shared_ptr<KrSimulatedFaults> mFaults;

private:
  std::unique_ptr<KrDevice> mDevice;
  std::unique_ptr<KrCameraBridge> mBridge; ///< Ends before the device.
};
