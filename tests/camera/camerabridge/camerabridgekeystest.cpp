// The camera bridge manager without a mouse: everything is reached by its letter, or on the way that the Tab key goes.

#include "camerabridgeuser.h"

#include <QRadioButton>

#include <vector>

namespace {

using browseruser::kGrid;

/// The id of the manager's control that has the keyboard; 0 for none, the browser's as they are. Looks.
int GetFocusedControl() {
  for (const QWidget* widget = QApplication::focusWidget(); widget; widget = widget->parentWidget())
    if (widget->objectName().startsWith("control"))
      return widget->objectName().mid(7).toInt();
  return 0;
}

int LookWhereTheKeyboardIs(UserHands& aUser) {
  int control = 0;
  aUser.Await("a glance", [&] {
    control = GetFocusedControl();
    return true;
  });
  return control;
}

/// Presses a key until a control has the keyboard; gives those on the way.
std::vector<int> GoTo(UserHands& aUser, const QString& aKey, int aControl) {
  constexpr int kMostSteps = 30;
  std::vector<int> passed = {LookWhereTheKeyboardIs(aUser)};
  while (passed.back() != aControl && passed.size() < kMostSteps) {
    aUser.Press(aKey);
    if (!aUser.Await("another control", [&] { return GetFocusedControl() != passed.back(); }))
      return passed;
    passed.push_back(LookWhereTheKeyboardIs(aUser));
  }
  EXPECT_EQ(passed.back(), aControl) << testing::PrintToString(passed);
  return passed;
}

class CameraBridgeKeys : public CameraBridgeUser {
protected:
  /// The port list has the keyboard; the keys of a list choose without opening it.
  static void ChoosePort(UserHands& aUser, const QString& aKeys, const QString& aPort) {
    ASSERT_TRUE(aUser.Await("the port list", [] {
      if (auto* const list = FindControlOf<QWidget>(kManager, bridge::kDevicePort))
        return list->hasFocus();
      return false;
    }));
    for (const QString& key : aKeys.split(' '))
      aUser.Press(key);
    ASSERT_TRUE(aUser.Await(aPort, [&] { return GetShownText(bridge::kDevicePort) == aPort; }));
  }
  /// Sets a feature in the browser, to which the Tab key leads.
  static void Set(UserHands& aUser, const QString& aFeature, const QString& aValue) {
    GoTo(aUser, "Tab", kGrid);
    EXPECT_TRUE(browseruser::SetNumber(aUser, kManager, aFeature, aValue));
  }
  /// Takes another kind by its letter, which disconnects, and goes back to the port list.
  static void Leave(UserHands& aUser, const CameraHands& aHands, int aStatus) {
    aUser.Press("alt+n");
    ASSERT_TRUE(AwaitChecked(aUser, kManager, bridge::kNone));
    ASSERT_TRUE(aHands.AwaitText(aStatus, "Not initialized"));
    ASSERT_TRUE(aHands.AwaitNoFeatures());
    GoTo(aUser, "shift+Tab", bridge::kDevicePort);
  }
};

} // namespace

TEST_F(CameraBridgeKeys, WithoutAMouse_EachKindIsConnectedBrowsedSetAndLeft) {
  int genCP = 0;
  int clProtocol = 0;
  int cameraFile = 0;
  Run([&](UserHands& aUser, const CameraHands& aHands) {
    ChoosePort(aUser, "Home", "Serial0");
    aUser.Press("alt+g");
    ASSERT_TRUE(aHands.AwaitReady(bridge::kGenCPConnect));
    aUser.Press("alt+e");
    genCP = aHands.AwaitConnected(bridge::kGenCPStatus);
    Set(aUser, "ExposureTime", "3100");
    Leave(aUser, aHands, bridge::kGenCPStatus);

    ChoosePort(aUser, "End", "Bulk0");
    aUser.Press("alt+c");
    ASSERT_TRUE(aHands.AwaitReady(bridge::kProbe));
    aUser.Press("alt+p");
    ASSERT_TRUE(aHands.AwaitTextWith(bridge::kProbeStatus, "SIM_CL_03"));
    ASSERT_TRUE(aHands.AwaitReady(bridge::kCLProtocolConnect));
    aUser.Press("alt+o");
    clProtocol = aHands.AwaitConnected(bridge::kCLProtocolStatus);
    Set(aUser, "ExposureTime", "3200");
    Leave(aUser, aHands, bridge::kCLProtocolStatus);

    ChoosePort(aUser, "Home Down", "Serial1");
    aUser.Press("alt+f");
    ASSERT_TRUE(AwaitChecked(aUser, kManager, bridge::kCameraFile));
    GoTo(aUser, "Tab", bridge::kBrowse);
    aUser.Press("space");
    ASSERT_TRUE(aHands.EnterFile(kTextCameraFile));
    aUser.Press("alt+l");
    cameraFile = aHands.AwaitConnected(bridge::kCameraFileStatus);
    Set(aUser, "Gain", "13");
    Leave(aUser, aHands, bridge::kCameraFileStatus);
    aUser.Press("Escape");
    EXPECT_TRUE(aUser.AwaitNoWindow(kManager));
  });

  ExpectCamera(ConnectGenCP(), "ExposureTime", 3100, genCP);
  ExpectCamera(ConnectCLProtocol(), "ExposureTime", 3200, clProtocol);
  ExpectCamera(ConnectCameraFile(), "Gain", 13, cameraFile);
}

TEST_F(CameraBridgeKeys, TabKey_GoesFromTheTopToTheBottomAndThenIntoTheBrowser) {
  Run([&](UserHands& aUser, const CameraHands& aHands) {
    ChoosePort(aUser, "Home", "Serial0");
    aUser.Press("alt+g");
    ASSERT_TRUE(aHands.AwaitReady(bridge::kGenCPConnect));
    GoTo(aUser, "shift+Tab", bridge::kDevicePort);

    const std::vector<int> passed = GoTo(aUser, "Tab", kGrid);

    const std::vector<int> setup = {bridge::kDevicePort,   bridge::kGenCP,  bridge::kGenCPXML,
                                    bridge::kGenCPConnect, bridge::kSource, bridge::kSynchronization,
                                    bridge::kReset,        bridge::kPoCL};
    ASSERT_GT(passed.size(), setup.size());
    EXPECT_EQ(std::vector<int>(passed.begin(), passed.begin() + static_cast<std::ptrdiff_t>(setup.size())), setup);
  });
}
