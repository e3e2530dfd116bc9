#pragma once
// A user at the manager of a simulated camera's serial bridges, on a host whose only serial ports are the test's.

#include "krgui/krserialbridgemanagerwnd.h"
#include "krserial/krhostserialports.h"
#include "serial/serialbridgeids.h"
#include "socatline.h"
#include "terminaluser.h"

#include <QDir>

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

/// What a user does at the manager again and again.
class BridgeHands {
public:
  explicit BridgeHands(UserHands& aUser) : mUser(aUser) {}

  bool AwaitOpen() const { return mUser.AwaitWindow(kManager) && mUser.AwaitEnabled(kManager, bridge::kDevicePort); }
  void PickPort(const QString& aPort) const { Pick(mUser, kManager, bridge::kDevicePort, aPort); }
  void ChooseKind(int aButton) const {
    mUser.Click(kManager, aButton);
    AwaitKind(aButton);
  }
  void AwaitKind(int aButton) const { AwaitChecked(mUser, kManager, aButton); }
  /// Links a port that is not the first one, whose choice the list would forget, to one of the host.
  void Link(const QString& aPort, const QString& aHostPort) const {
    PickPort(aPort);
    ChooseKind(bridge::kCOMPortLink);
    Pick(mUser, kManager, bridge::kCOMPort, aHostPort);
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
