// The feature browser as a user meets it: a camera that streams, a window on the screen, a mouse and a keyboard.

#include "camerathatstreams.h"
#include "fakecamera.h"
#include "krgui/krgenbrowserwnd.h"
#include "krtransport/krtransport.h"
#include "userhands.h"

#include <QApplication>
#include <QLabel>
#include <QLineEdit>
#include <QTreeView>

#include <gmock/gmock.h>

#include <cmath>
#include <functional>
#include <optional>
#include <string>

namespace {

const QString kBrowser = "Features";
const QString kOptions = "Browser Options";

// Controls of the browser and its options dialog.
constexpr int kOptionsButton = 1082;
constexpr int kVisibility = 1087;
constexpr int kSearchResult = 1094;
constexpr int kGrid = 1095;
constexpr int kNames = 1141;
constexpr int kView = 1143;
constexpr int kRefresh = 1144;
constexpr int kOk = 1;

// Looks; user-interface thread alone.

QTreeView* FindGrid() {
  for (QWidget* const window : QApplication::topLevelWidgets())
    if (window->windowTitle() == kBrowser)
      return window->findChild<QTreeView*>("propertiesGrid");
  return nullptr;
}

QString GetSelectedName() {
  const QTreeView* const grid = FindGrid();
  return grid ? grid->currentIndex().siblingAtColumn(0).data().toString() : QString();
}

bool HasEditorFocus() {
  const QTreeView* const grid = FindGrid();
  const QWidget* const focused = QApplication::focusWidget();
  return grid && focused && focused != grid && focused != grid->viewport() && grid->isAncestorOf(focused);
}

QString GetSearchResult() {
  for (QWidget* const window : QApplication::topLevelWidgets())
    if (window->windowTitle() == kBrowser)
      if (const auto* const label = window->findChild<QLabel*>("control" + QString::number(kSearchResult)))
        return label->text();
  return {};
}

class BrowserUser : public testing::Test {
protected:
  /// Shows the browser and lets the user do this.
  void Run(KrGenParameterArray* aParameters, const std::function<void(UserHands&)>& aScript) {
    ASSERT_NE(aParameters, nullptr);
    mBrowser.SetTitle(kBrowser.toStdString());
    mBrowser.SetGenParameterArray(aParameters);
    RunWithUser([this] { EXPECT_TRUE(mBrowser.ShowModal(0).IsOK() || !mBrowser.GetWidget()); },
                [&](UserHands& aUser) {
                  if (aUser.AwaitWindow(kBrowser))
                    aScript(aUser);
                });
    mBrowser.SetGenParameterArray(nullptr);
  }

  /// Finds a feature by the search field and gives the keyboard back to the rows.
  static void Find(UserHands& aUser, const QString& aName) {
    aUser.Press("ctrl+f");
    aUser.Await("the search field", [] { return qobject_cast<QLineEdit*>(QApplication::focusWidget()) != nullptr; });
    aUser.Type(aName);
    aUser.Await(aName + " found", [&] { return GetSelectedName() == aName; });
    aUser.Press("ctrl+f");
    aUser.Await("the rows with the keyboard", [] { return FindGrid() && FindGrid()->hasFocus(); });
  }
  /// Writes a number into the feature of a name, by keyboard alone.
  static void SetNumber(UserHands& aUser, const QString& aName, const QString& aValue) {
    Find(aUser, aName);
    aUser.Press("Return");
    aUser.Await("the editor of " + aName, HasEditorFocus);
    aUser.Press("ctrl+a");
    aUser.Type(aValue);
    aUser.Press("Return");
    aUser.AwaitRow(kBrowser, kGrid, aName + " | " + aValue);
  }
  /// Chooses the next or an earlier entry of a drop-down list.
  static void Choose(UserHands& aUser, const QString& aWindow, int aList, const QString& aKey, int aTimes = 1) {
    aUser.Click(aWindow, aList);
    aUser.AwaitMenu();
    aUser.Press(aKey, aTimes);
    aUser.Press("Return");
    aUser.Await("the list closed", [] { return QApplication::activePopupWidget() == nullptr; });
  }
  static void OpenOptions(UserHands& aUser) {
    aUser.Click(kBrowser, kOptionsButton);
    aUser.AwaitWindow(kOptions);
  }
  static void AcceptOptions(UserHands& aUser) {
    aUser.Click(kOptions, kOk);
    aUser.AwaitNoWindow(kOptions);
    aUser.AwaitWindow(kBrowser);
  }

  KrSystem mSystem;
  KrGenBrowserWnd mBrowser;
};

/// On a camera of the simulated lab.
class BrowserOnASimulatedCamera : public BrowserUser {
protected:
  void SetUp() override {
    ASSERT_TRUE(KrInstallTransports({.gigEVision = true, .usb3Vision = false, .simulation = true}).IsOK());
    ASSERT_TRUE(mSystem.Find().IsOK());
    for (std::size_t index = 0; !mCamera && index < mSystem.GetDeviceCount(); ++index)
      if (mSystem.GetDeviceInfo(index)->GetDisplayID().ToUtf8().starts_with("Simulated Mono Camera"))
        mCamera.emplace(*mSystem.GetDeviceInfo(index));
    ASSERT_TRUE(mCamera && mCamera->GetParameters());
    // The lab lives as long as the process, and its camera keeps what a test before has set.
    KrGenParameterArray& parameters = *mCamera->GetParameters();
    ASSERT_TRUE(parameters.GetFloat("ExposureTime")->SetValue(1000).IsOK());
    ASSERT_TRUE(parameters.GetFloat("Gain")->SetValue(0).IsOK());
    ASSERT_TRUE(parameters.GetEnum("TestPattern")->SetValue(0).IsOK());
  }

  std::optional<CameraThatStreams> mCamera;
};

/// On an independent camera, over a network.
class BrowserOnARealCamera : public BrowserUser {
protected:
  void SetUp() override {
    ASSERT_TRUE(KrInstallTransports({.gigEVision = true, .usb3Vision = false, .simulation = true}).IsOK());
    const KrDeviceInfo* info = nullptr;
    ASSERT_TRUE(mSystem.FindDevice("127.0.0.1", &info).IsOK());
    const KrGenDescription description = ReadDescription(*info);
    mCamera.emplace(*info, &description);
  }

  // The camera's own leaves its gain out of the categories that can be reached.
  static KrGenDescription ReadDescription(const KrDeviceInfo& aInfo) {
    std::unique_ptr<KrDevice> device;
    KrGenDescription description;
    EXPECT_TRUE(KrDevice::Open(aInfo, KrDeviceAccess::Control, device).IsOK());
    EXPECT_TRUE(
        device &&
        KrGenDescription::ReadFromDevice(device->GetRegisterPort(), KrGenBootstrap::GigEVision, description).IsOK());
    std::string text(description.GetText());
    const std::string last = "<pFeature>TransportLayerControl</pFeature>";
    const std::size_t place = text.find(last);
    EXPECT_NE(place, std::string::npos);
    if (place != std::string::npos)
      text.insert(place, "<pFeature>AnalogControl</pFeature>");
    EXPECT_TRUE(KrGenDescription::ReadFromMemory(text, "the camera's own with its gain", description).IsOK());
    return description;
  }

  FakeCamera mFake;
  std::optional<CameraThatStreams> mCamera;
};

} // namespace

TEST_F(BrowserOnASimulatedCamera, ExposureAndGainSetByKeyboard_ReachTheCameraAndWhatDependsOnThem) {
  Run(mCamera->GetParameters(), [this](UserHands& aUser) {
    ASSERT_TRUE(aUser.AwaitRow(kBrowser, kGrid, "ResultingFrameRate | 30 Hz"));

    SetNumber(aUser, "ExposureTime", "100000");
    SetNumber(aUser, "Gain", "6");

    EXPECT_TRUE(aUser.AwaitRow(kBrowser, kGrid, "ResultingFrameRate | 10 Hz"));
    EXPECT_TRUE(aUser.Await("the browser knowing of it", [this] { return mBrowser.HasChanged(); }));
  });

  double exposureTime = 0;
  double gain = 0;
  EXPECT_TRUE(mCamera->GetParameters()->GetFloat("ExposureTime")->GetValue(exposureTime).IsOK());
  EXPECT_TRUE(mCamera->GetParameters()->GetFloat("Gain")->GetValue(gain).IsOK());
  EXPECT_EQ(exposureTime, 100000.0);
  EXPECT_EQ(gain, 6.0);
}

TEST_F(BrowserOnASimulatedCamera, PictureChosenByKeyboard_IsWhatTheCameraSends) {
  Run(mCamera->GetParameters(), [this](UserHands& aUser) {
    ASSERT_TRUE(aUser.AwaitRow(kBrowser, kGrid, "TestPattern | GreyDiagonalRampMoving"));
    ASSERT_TRUE(aUser.Await("a picture that moves", [this] { return mCamera->IsMoving(); }));
    Find(aUser, "TestPattern");

    aUser.Press("Return");
    aUser.Await("the list of patterns", HasEditorFocus);
    aUser.Press("Down");
    aUser.Press("Return");

    EXPECT_TRUE(aUser.Await("a picture that stands still", [this] { return !mCamera->IsMoving(); }));
  });
}

TEST_F(BrowserOnASimulatedCamera, VisibilityNamesViewAndRefresh_AreSwitched) {
  Run(mCamera->GetParameters(), [](UserHands& aUser) {
    ASSERT_TRUE(aUser.AwaitRow(kBrowser, kGrid, "ExposureTime | 1000 us"));
    ASSERT_TRUE(aUser.AwaitNoRow(kBrowser, kGrid, "DeviceSerialNumber"));

    Choose(aUser, kBrowser, kVisibility, "Down");
    EXPECT_TRUE(aUser.AwaitRow(kBrowser, kGrid, "  DeviceSerialNumber | "));

    OpenOptions(aUser);
    Choose(aUser, kOptions, kNames, "Down");
    AcceptOptions(aUser);
    EXPECT_TRUE(aUser.AwaitRow(kBrowser, kGrid, "  Device Serial Number | "));

    OpenOptions(aUser);
    Choose(aUser, kOptions, kNames, "Up");
    Choose(aUser, kOptions, kView, "Down");
    Choose(aUser, kOptions, kRefresh, "Down");
    AcceptOptions(aUser);
    EXPECT_TRUE(aUser.AwaitNoRow(kBrowser, kGrid, "  DeviceSerialNumber"));
    EXPECT_EQ(aUser.GetRows(kBrowser, kGrid).value(0).section(" | ", 0, 0), "AcquisitionFrameCount");
  });

  EXPECT_EQ(mBrowser.GetVisibility(), KrGenVisibility::Expert);
  EXPECT_EQ(mBrowser.GetRefreshMode(), KrGenRefresh::Manual);
}

TEST_F(BrowserOnASimulatedCamera, Search_StepsThroughTheMatches) {
  Run(mCamera->GetParameters(), [](UserHands& aUser) {
    ASSERT_TRUE(aUser.AwaitRow(kBrowser, kGrid, "ExposureTime | 1000 us"));
    aUser.Press("ctrl+f");
    aUser.Await("the search field", [] { return qobject_cast<QLineEdit*>(QApplication::focusWidget()) != nullptr; });

    aUser.Type("offset");
    EXPECT_TRUE(aUser.Await("the first match", [] { return GetSelectedName() == "OffsetX"; }));
    EXPECT_TRUE(aUser.Await("the first result", [] { return GetSearchResult() == "Result 1 of 2"; }));
    aUser.Press("Return");
    EXPECT_TRUE(aUser.Await("the second match", [] { return GetSelectedName() == "OffsetY"; }));
    aUser.Press("Return");
    EXPECT_TRUE(aUser.Await("the first match again", [] { return GetSelectedName() == "OffsetX"; }));
    aUser.Type("!");
    EXPECT_TRUE(aUser.Await("nothing found", [] { return GetSearchResult() == "No result found"; }));
  });
}

TEST_F(BrowserOnARealCamera, ExposureAndGainSetByKeyboard_ChangeTheBrightnessOfThePicture) {
  double before = 0;
  double exposed = 0;
  double amplified = 0;

  Run(mCamera->GetParameters(), [&](UserHands& aUser) {
    ASSERT_TRUE(aUser.AwaitRow(kBrowser, kGrid, "ExposureTimeAbs | 10000"));
    ASSERT_TRUE(aUser.Await("a picture", [&] { return mCamera->GetBrightness() >= 0; }));
    before = mCamera->GetBrightness();

    SetNumber(aUser, "ExposureTimeAbs", "1000");
    EXPECT_TRUE(aUser.Await("another picture", [&] { return std::abs(mCamera->GetBrightness() - before) > 1; }));
    exposed = mCamera->GetBrightness();
    SetNumber(aUser, "GainRaw", "5");
    EXPECT_TRUE(aUser.Await("a third picture", [&] { return std::abs(mCamera->GetBrightness() - exposed) > 1; }));
    amplified = mCamera->GetBrightness();
  });

  EXPECT_NE(before, exposed);
  EXPECT_NE(exposed, amplified);
}
