#pragma once
// A user at the serial terminal of a simulated camera whose ports end in pseudo-terminals and an instrument.

#include "krdevice/krdevice.h"
#include "krdevice/krdeviceadapter.h"
#include "krgui/krserialterminalwnd.h"
#include "krsystem/krsystem.h"
#include "krtransport/krsimulatedfaults.h"
#include "krtransport/krtransport.h"
#include "numberedlines.h"
#include "serial/terminalids.h"
#include "seriallabfile.h"
#include "windowhands.h"

#include <QFile>
#include <QPlainTextEdit>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>

inline const QString kTerminal = "Device Serial Communication";
inline constexpr const char* kCameraMAC = "02:4b:52:00:77:10";

namespace id = krgui::terminalid;

/// The lab of this process, whose camera has: Serial0 at 3 Mbaud and Serial1 at 9600 baud, each with a pseudo-terminal
/// behind it, and Bulk0 with the instrument.
class TerminalLab {
public:
  static TerminalLab& Get() {
    static TerminalLab lab;
    return lab;
  }
  QString GetPath(const QString& aName) const { return mFolder.filePath(aName); }
  QString GetLabFile() const { return GetPath("lab.yaml"); }
  /// Where the pseudo-terminals behind Serial0 and Serial1 are to be.
  std::string GetFastLine() const { return GetPath("fast").toStdString(); }
  std::string GetSlowLine() const { return GetPath("slow").toStdString(); }

private:
  TerminalLab() {
    QFile file(GetLabFile());
    EXPECT_TRUE(file.open(QIODevice::WriteOnly));
    const std::string text =
        krtest::MakeSerialLabFile(kCameraMAC, {"port: Serial0, rates: [3000000], behind: tty, path: " + GetFastLine(),
                                               "port: Serial1, rates: [9600], behind: tty, path: " + GetSlowLine(),
                                               "port: Bulk0, rates: [115200], behind: instrument"});
    EXPECT_EQ(file.write(text.data(), static_cast<qint64>(text.size())), static_cast<qint64>(text.size()));
  }

  QTemporaryDir mFolder;
};

/// Looks; user-interface thread alone.
template <typename Control>
Control* FindTerminalControl(int aControl) {
  return FindControlOf<Control>(kTerminal, aControl);
}

inline QString GetTranscript() {
  for (QWidget* const window : QApplication::topLevelWidgets())
    if (const auto* const transcript = window->findChild<QPlainTextEdit*>("transcript"))
      return transcript->toPlainText();
  return {};
}

/// What a user does at the terminal again and again.
class TerminalHands {
public:
  explicit TerminalHands(UserHands& aUser) : mUser(aUser) {}

  bool AwaitOpen() const { return mUser.AwaitWindow(kTerminal) && mUser.AwaitEnabled(kTerminal, id::kSend); }
  void Check(int aButton, bool aIsChecked) const {
    mUser.Click(kTerminal, aButton);
    mUser.Await("the choice of " + QString::number(aButton), [=] {
      const auto* const button = FindTerminalControl<QAbstractButton>(aButton);
      return button && button->isChecked() == aIsChecked;
    });
  }
  /// Types over what is in a field.
  void Fill(int aField, const QString& aText) const {
    mUser.Click(kTerminal, aField);
    mUser.Press("ctrl+a");
    mUser.Type(aText);
  }
  void SendTyped(const QString& aText) const {
    Fill(id::kData, aText);
    mUser.Press("Return");
  }
  bool AwaitShown(const QString& aText) const {
    QString shown;
    const bool isShown = mUser.Await("\"" + aText + "\" in the transcript", [&] {
      shown = GetTranscript();
      return shown.contains(aText);
    });
    EXPECT_TRUE(isShown) << "The transcript ends with: " << shown.right(kTold).toStdString();
    return isShown;
  }
  void SendFile(const QString& aPath) const {
    Fill(id::kFile, aPath);
    mUser.Click(kTerminal, id::kSendFile);
  }

private:
  static constexpr int kTold = 200;

  UserHands& mUser;
};

class TerminalUser : public testing::Test {
protected:
  void SetUp() override {
    const std::string labFile = TerminalLab::Get().GetLabFile().toStdString();
    ASSERT_TRUE(
        KrInstallTransports({.gigEVision = false, .usb3Vision = false, .simulation = true, .labFile = labFile}).IsOK());
    ASSERT_TRUE(mSystem.Find().IsOK());
    ASSERT_GE(mSystem.GetDeviceCount(), 1u);
    ASSERT_TRUE(KrFindSimulatedFaults(kCameraMAC, mFaults).IsOK());
  }

  /// Shows the terminal at a port and lets the user do this, as soon as it can be sent.
  void Run(KrDeviceSerial aPort, const std::function<void(UserHands&, const TerminalHands&)>& aScript) {
    std::unique_ptr<KrDevice> device;
    ASSERT_TRUE(KrDevice::Open(*mSystem.GetDeviceInfo(0), KrDeviceAccess::Control, device).IsOK());
    KrDeviceAdapter adapter(*device);
    KrSerialTerminalWnd terminal;
    ASSERT_TRUE(terminal.SetDevice(&adapter).IsOK());
    ASSERT_TRUE(terminal.SetSerialPort(aPort).IsOK());
    RunWithUser([&] { static_cast<void>(terminal.ShowModal(0)); }, // However the user ends it.
                [&](UserHands& aUser) {
                  TerminalHands hands(aUser);
                  if (hands.AwaitOpen())
                    aScript(aUser, hands);
                });
    EXPECT_TRUE(terminal.SetDevice(nullptr).IsOK());
  }
  KrSimulatedSerialCounts GetCounts(KrDeviceSerial aPort) const {
    KrSimulatedSerialCounts counts;
    EXPECT_TRUE(mFaults->GetSerialCounts(static_cast<std::uint32_t>(aPort), counts).IsOK());
    return counts;
  }
  static QString WriteFile(const QString& aName, const std::string& aBytes) {
    const QString path = TerminalLab::Get().GetPath(aName);
    QFile file(path);
    const auto size = static_cast<qint64>(aBytes.size());
    EXPECT_TRUE(file.open(QIODevice::WriteOnly) && file.write(aBytes.data(), size) == size);
    return path;
  }

  KrSystem mSystem;
  std::shared_ptr<KrSimulatedFaults> mFaults;
};
