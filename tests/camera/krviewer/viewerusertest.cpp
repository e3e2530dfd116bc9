// The viewer in the hands of a user without a mouse: everything that he needs of the browser is reached by keys.

#include "browser/browseruser.h"
#include "krgenicam/krgensettings.h"
#include "krsystem/krsystem.h"
#include "krtransport/krtransport.h"
#include "temporaryfolder.h"
#include "window/viewer.h"

#include <gmock/gmock.h>

#include <QFileInfo>

#include <functional>

namespace {

using namespace browseruser;

// Looks; user-interface thread alone.

QString GetFocusedName() {
  const QWidget* const focused = QApplication::focusWidget();
  return focused ? focused->accessibleName() : QString();
}

/// The viewer on a simulated camera, from its opening until its window is closed.
class ViewerUser : public testing::Test {
protected:
  void SetUp() override {
    ASSERT_TRUE(KrInstallTransports({.gigEVision = false, .usb3Vision = false, .simulation = true}).IsOK());
    ASSERT_TRUE(mSystem.Find().IsOK());
    for (std::size_t index = 0; !mInfo && index < mSystem.GetDeviceCount(); ++index)
      if (mSystem.GetDeviceInfo(index)->GetDisplayID().ToUtf8().starts_with("Simulated Mono Camera"))
        mInfo = mSystem.GetDeviceInfo(index);
    ASSERT_NE(mInfo, nullptr);
    mTitle = QString::fromUtf8(mInfo->GetDisplayID().CStr());
  }

  void Run(const std::function<void(UserHands&)>& aScript) {
    krviewer::Viewer viewer({});
    viewer.Begin();
    viewer.Open(krviewer::BorrowCamera(*mInfo));
    RunWithUser([&] { EXPECT_EQ(viewer.Run(), 0); },
                [&](UserHands& aUser) {
                  if (aUser.AwaitWindow(mTitle) && aUser.AwaitRow(mTitle, kGrid, "  ExposureTime | 1000 us"))
                    aScript(aUser);
                });
  }

  /// Presses a key until a control has the keyboard. False, and a failed test, when that is none of ten that come by.
  static bool GoTo(UserHands& aUser, const QString& aKey, const QString& aControl) {
    QString passed;
    for (int step = 0; step < 10; ++step) {
      const QString before = Look(aUser);
      aUser.Press(aKey);
      if (!aUser.Await("another control than " + before, [&] { return GetFocusedName() != before; }))
        return false;
      passed += Look(aUser) + ", ";
      if (Look(aUser) == aControl)
        return true;
    }
    ADD_FAILURE() << aKey.toStdString() << " does not lead to " << aControl.toStdString() << " but to "
                  << passed.toStdString();
    return false;
  }

  KrSystem mSystem;
  const KrDeviceInfo* mInfo = nullptr;
  QString mTitle;

private:
  static QString Look(UserHands& aUser) {
    QString name;
    aUser.Await("a glance", [&] {
      name = GetFocusedName();
      return true;
    });
    return name;
  }
};

} // namespace

TEST_F(ViewerUser, WithoutAMouse_FindsSetsSwitchesChoosesSavesAndCloses) {
  const TemporaryFolder folder;
  const QString file = QString::fromStdString(folder.GetFile("features.txt"));

  Run([&](UserHands& aUser) {
    ASSERT_TRUE(GoTo(aUser, "Tab", "Camera image"));
    ASSERT_TRUE(GoTo(aUser, "Tab", "Features"));
    ASSERT_TRUE(SetNumber(aUser, mTitle, "ExposureTime", "5000"));

    ASSERT_TRUE(GoTo(aUser, "shift+Tab", "Visibility"));
    aUser.Press("Down");
    EXPECT_TRUE(aUser.AwaitRow(mTitle, kGrid, "  DeviceSerialNumber | "));

    ASSERT_TRUE(GoTo(aUser, "shift+Tab", "Properties"));
    aUser.Press("space");
    ASSERT_TRUE(aUser.AwaitWindow(kOptions));
    aUser.Press("Down");
    ASSERT_TRUE(aUser.Await("the view out of reach", [] {
      const QWidget* const dialog = QApplication::activeWindow();
      return dialog && !dialog->findChild<QWidget*>("control" + QString::number(kView))->isEnabled();
    }));
    ASSERT_TRUE(GoTo(aUser, "Tab", "Refresh"));
    aUser.Press("Down");
    aUser.Press("Return");
    ASSERT_TRUE(aUser.AwaitNoWindow(kOptions) && aUser.AwaitRow(mTitle, kGrid, "  Device Serial Number | "));
    EXPECT_TRUE(aUser.Await("the button to refresh", IsRefreshOffered));
    EXPECT_TRUE(aUser.Await("the keyboard where it was", [] { return GetFocusedName() == "Properties"; }));

    ASSERT_TRUE(GoTo(aUser, "F6", "Features"));
    aUser.Press("Home");
    aUser.Press("Menu");
    ASSERT_TRUE(aUser.AwaitMenu());
    aUser.Press("Up", 2);
    aUser.Press("Return");
    ASSERT_TRUE(aUser.AwaitWindow("Save Features"));
    aUser.Type(file);
    aUser.Press("Return");
    ASSERT_TRUE(aUser.Await("what the stream keeps from the file", [] {
      const QWidget* const dialog = QApplication::activeWindow();
      return dialog && dialog->objectName() == "settingsproblems";
    }));
    aUser.Press("Return");
    ASSERT_TRUE(aUser.AwaitNoWindow("Save Features"));
    EXPECT_TRUE(aUser.Await("the file", [&] { return QFileInfo::exists(file); }));

    ASSERT_TRUE(aUser.AwaitWindow(mTitle));
    aUser.Press("ctrl+q");
    EXPECT_TRUE(aUser.AwaitNoWindow(mTitle));
  });

  KrGenSettings settings;
  ASSERT_TRUE(settings.Load(file.toStdString()).IsOK());
  EXPECT_THAT(settings.GetSettings(), testing::Contains(KrGenSetting{"ExposureTime", "5000"}));
}
