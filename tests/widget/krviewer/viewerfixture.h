#pragma once
// The whole viewer on the simulated lab, in the hands of a test that looks at its windows and presses their keys.

#include "await.h"
#include "labfixture.h"
#include "temporaryfolder.h"
#include "window/viewer.h"

#include <QAbstractButton>
#include <QAction>
#include <QApplication>
#include <QLabel>
#include <QTest>

#include <functional>
#include <optional>

class ViewerTest : public LabTest {
protected:
  void Begin(const krviewer::CommandLine& aCommandLine = {}) {
    mViewer.emplace(aCommandLine, mHost);
    mViewer->Begin();
    ASSERT_TRUE(Await([this] { return GetWindow().isActiveWindow(); }));
  }
  /// Opens a camera of the lab as the command line does.
  void Open(const char* aUniqueID) {
    FindAll();
    const auto* const info = FindInfo<KrDeviceInfo>(aUniqueID);
    ASSERT_NE(info, nullptr) << aUniqueID;
    mViewer->Open(krviewer::BorrowCamera(*info));
  }
  /// A camera at whose address nothing answers.
  static krviewer::CameraInfo MakeCameraWithoutMAC(const KrString& aAddress) {
    krsystem::GEVFields fields;
    fields.uniqueID = aAddress + "/7";
    fields.macAddress = "00:00:00:00:00:00";
    fields.ipAddress = aAddress;
    fields.serialNumber = "7";
    return std::make_shared<const KrDeviceInfoGEV>(fields);
  }
  void OpenStreaming(const char* aUniqueID = kMonoMAC) {
    Open(aUniqueID);
    ASSERT_TRUE(Await([this] { return GetPage() && GetPage()->IsStreaming(); }));
  }
  /// Ends the viewer and lets go of it.
  void End() {
    mViewer->Finish();
    mViewer.reset();
  }

  /// Waits until nobody has the camera.
  bool AwaitFree(const char* aUniqueID) {
    bool isFree = false;
    return Await([&] {
      std::unique_ptr<KrDevice> device;
      isFree = isFree || LabTest::Open(aUniqueID, device).IsOK();
      return isFree;
    });
  }
  // Runs the loop until a condition comes true; false when it does not within a generous limit. Unlike the toolkit's
  // own wait, deletes nothing that was left for later.
  static bool Await(const std::function<bool()>& aCondition) {
    return krtest::Await([&] {
      const bool isSo = aCondition();
      if (!isSo)
        QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
      return isSo;
    });
  }
  /// Presses a key in the window with the keyboard.
  static void Press(Qt::Key aKey, Qt::KeyboardModifiers aModifiers = Qt::NoModifier) {
    QWidget* const focused = QApplication::focusWidget();
    QTest::keyClick(focused ? focused : QApplication::activeWindow(), aKey, aModifiers);
  }
  /// Chooses an entry of a window by its name; false where it cannot be chosen.
  bool Choose(const char* aName, int aWindow = 0) {
    auto* const action = GetWindow(aWindow).findChild<QAction*>(aName);
    if (!action || !Await([=] { return action->isEnabled(); }))
      return false;
    action->trigger();
    return true;
  }
  bool IsOffered(const char* aName) {
    const auto* const action = GetWindow().findChild<QAction*>(aName);
    return action && action->isEnabled();
  }
  /// Which letter is marked depends on what else is in the window.
  static QString WithoutMark(QString aText) { return aText.remove(QLatin1Char('&')); }
  static QAbstractButton* FindButton(const QWidget& aParent, const QString& aText) {
    for (auto* const button : aParent.findChildren<QAbstractButton*>())
      if (WithoutMark(button->text()) == WithoutMark(aText) && button->isVisible())
        return button;
    return nullptr;
  }
  /// Clicks the button of a page or a bar with this text, once it is shown.
  static bool Click(const QWidget& aParent, const QString& aText) {
    if (!Await([&] { return FindButton(aParent, aText) != nullptr; }))
      return false;
    FindButton(aParent, aText)->click();
    return true;
  }
  /// What the bar over the picture says; empty while it is hidden.
  static QString GetMessage(const QWidget& aParent) {
    const auto* const bar = aParent.findChild<krviewer::MessageBar*>();
    return bar && bar->isVisible() ? bar->GetText() : QString();
  }

  /// The window on the screen with this title; null where there is none.
  static QWidget* FindWindow(const QString& aTitle) {
    for (QWidget* const window : QApplication::topLevelWidgets())
      if (window->windowTitle() == aTitle && window->isVisible())
        return window;
    return nullptr;
  }
  krviewer::MainWindow& GetWindow(int aIndex = 0) { return *mViewer->GetWindows().at(aIndex); }
  krviewer::CameraPage* GetPage(int aWindow = 0) { return GetWindow(aWindow).GetCurrentPage(); }
  bool IsFirstPageShown() { return GetWindow().GetFirstPage().isVisible(); }

  const TemporaryFolder mFolder;
  const QString mSettingsFile = QString::fromStdString(mFolder.GetFile("krviewer.ini"));
  /// Is not there, unless a test writes it.
  const QString mGuideFile = QString::fromStdString(mFolder.GetFile("guide.md"));
  /// For a test to change before it begins.
  krviewer::ViewerHost mHost = {.settingsFile = mSettingsFile, .guideFile = mGuideFile, .libraries = {"Aravis 0.8.26"}};
  std::optional<krviewer::Viewer> mViewer;
};
