#pragma once
// A user at the manager of a simulated camera's serial bridges, on a host whose only serial ports are the test's.

#include "krgui/krserialbridgemanagerwnd.h"
#include "krserial/krhostserialports.h"
#include "serial/serialbridgeids.h"
#include "socatline.h"
#include "terminaluser.h"

#include <QComboBox>
#include <QDir>
#include <QLabel>

namespace bridge = krgui::bridgeid;

inline const QString kManager = "Serial Communication Bridge";
/// The instrument's, which is behind Bulk0.
inline const std::string kQuestion = "*IDN?\r";
inline const std::string kAnswer = "Simulated Instrument,S1-Bulk0\r\n";

/// Gives the host of this process a folder of links of the test's own, and no hardware.
inline void UseHostPortsOfTheTest() {
  const TerminalLab& lab = TerminalLab::Get();
  for (const char* const folder : {"links", "none"})
    QDir().mkpath(lab.GetPath(folder));
  const auto getPath = [&lab](const char* aName) { return KrString(lab.GetPath(aName).toStdString()); };
  KrHostSerialPorts::SetFolders({.links = getPath("links"),
                                 .sysfs = getPath("none"),
                                 .devices = getPath("none"),
                                 .numbers = getPath("numbers"),
                                 .locks = getPath("none")});
}

/// What a program opens for a port of the host.
inline std::string GetHostPortPath(const std::string& aName) {
  return TerminalLab::Get().GetPath("links/" + QString::fromStdString(aName)).toStdString();
}

/// The text of the library's message box that is open; empty where there is none. Looks.
inline QString GetBoxText() {
  for (const QWidget* const window : QApplication::topLevelWidgets())
    if (const auto* const text = window->findChild<QLabel*>("text"); text && text->isVisible())
      return text->text();
  return {};
}
/// Waits for a message box, which has its window's title, and closes it; gives what it said.
inline std::string ReadBox(UserHands& aUser) {
  QString text;
  aUser.Await("a message", [&] {
    text = GetBoxText();
    return !text.isEmpty() && QApplication::activeModalWidget() && QApplication::activeModalWidget()->isActiveWindow();
  });
  aUser.Press("Return");
  aUser.Await("the message closed", [] { return GetBoxText().isEmpty(); });
  return text.toStdString();
}

/// What a user does at the manager again and again.
class BridgeHands {
public:
  explicit BridgeHands(UserHands& aUser) : mUser(aUser) {}

  bool AwaitOpen() const { return mUser.AwaitWindow(kManager) && mUser.AwaitEnabled(kManager, bridge::kDevicePort); }
  /// Picks an entry of a list of a window with the mouse and, in the list that opens, the keys.
  void Pick(const QString& aTitle, int aList, const QString& aEntry) const {
    mUser.Click(aTitle, aList);
    if (!mUser.AwaitMenu())
      return;
    mUser.Press("Home");
    const QComboBox* list = nullptr;
    int place = -1;
    mUser.Await("the entry " + aEntry, [&] {
      list = FindControlOf<QComboBox>(aTitle, aList);
      place = list ? list->findText(aEntry) : -1;
      return place >= 0;
    });
    if (place > 0)
      mUser.Press("Down", place);
    mUser.Press("Return");
    mUser.Await(aEntry + " chosen", [=] {
      const auto* const chosen = FindControlOf<QComboBox>(aTitle, aList);
      return !QApplication::activePopupWidget() && chosen && chosen->currentText() == aEntry;
    });
  }
  void PickPort(const QString& aPort) const { Pick(kManager, bridge::kDevicePort, aPort); }
  void ChooseKind(int aButton) const {
    mUser.Click(kManager, aButton);
    AwaitKind(aButton);
  }
  void AwaitKind(int aButton) const {
    mUser.Await("the kind " + QString::number(aButton), [=] {
      const auto* const button = FindControlOf<QAbstractButton>(kManager, aButton);
      return button && button->isChecked();
    });
  }
  /// Links a port that is not the first one, whose choice the list would forget, to one of the host.
  void Link(const QString& aPort, const QString& aHostPort) const {
    PickPort(aPort);
    ChooseKind(bridge::kCOMPortLink);
    Pick(kManager, bridge::kCOMPort, aHostPort);
    mUser.AwaitEnabled(kManager, bridge::kConfigure);
  }
  bool AwaitText(int aLabel, const QString& aText) const {
    QString shown;
    const bool isShown = mUser.Await("\"" + aText + "\"", [&] {
      const auto* const label = FindControlOf<QLabel>(kManager, aLabel);
      shown = label ? label->text() : QString();
      return shown == aText;
    });
    EXPECT_TRUE(isShown) << shown.toStdString();
    return isShown;
  }

private:
  UserHands& mUser;
};
