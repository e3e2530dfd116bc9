#pragma once
// What tests of the serial terminal share: a device with two lines, a window on it whose controls can be had, and a
// user's hands.

#include "krgui/krserialterminalwnd.h"
#include "serial/rollingedit.h"
#include "serial/terminalids.h"
#include "serialadapter.h"
#include "testwnd.h"
#include "windowhands.h"
#include "windowwait.h"

#include <QAbstractButton>
#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QTest>

#include <gmock/gmock.h>

#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

namespace krgui {

using namespace std::string_literals;

/// The controls by their ids.
namespace id = terminalid;

class TerminalTest : public testing::Test, protected WindowHands {
protected:
  TerminalTest() : mLine(mDevice.AddLine(0)), mBulk(mDevice.AddLine(2)) {
    mDevice.enumerations["Uart0BaudRate"] = {{"9600", "115200", "921600"}, "115200"};
    mDevice.booleans["Uart0Loopback"] = false;
  }
  ~TerminalTest() override {
    mWindow.reset();
    DeleteWhatIsLeft();
  }

  /// Opens the window on the device.
  void Open() {
    ASSERT_TRUE(mWindow->SetDevice(&mDevice).IsOK());
    ASSERT_TRUE(mWindow->ShowModeless(0).IsOK());
    ASSERT_TRUE(krtest::AwaitActive(mWindow->GetWidget()));
  }
  template <typename Control = QWidget>
  Control& Get(int aID) const {
    return Get<Control>(*mWindow, aID);
  }
  template <typename Control = QWidget>
  static Control& Get(const KrSerialTerminalWnd& aWindow, int aID) {
    auto* control = aWindow.GetWidget()->findChild<Control*>(QStringLiteral("control%1").arg(aID));
    if (control == nullptr)
      throw std::runtime_error("no control " + std::to_string(aID));
    return *control;
  }
  RollingEdit& GetTranscript() const { return *mWindow->GetWidget()->findChild<RollingEdit*>(); }
  std::u16string GetText() const { return std::u16string(GetTranscript().GetText()); }
  std::string GetStatus() const { return Get<QLabel>(id::kStatus).text().toStdString(); }
  /// Whether the screen has the whole text; always while paused.
  bool IsShown() const { return GetTranscript().IsPaused() || GetTranscript().GetShownText() == GetText(); }
  /// Waits for the transcript to show this.
  [[nodiscard]] bool AwaitText(std::u16string_view aText) const {
    return WaitFor([&] { return GetText() == aText && IsShown(); });
  }
  void Click(int aID) const { Get<QAbstractButton>(aID).click(); }
  void Check(int aID, bool aIsOn) const {
    if (Get<QAbstractButton>(aID).isChecked() != aIsOn)
      Click(aID);
  }
  void Type(int aID, const QString& aText) const { Get<QLineEdit>(aID).setText(aText); }
  [[nodiscard]] bool AwaitSent(const std::string& aBytes) const {
    return WaitFor([&] { return mLine->GetSent() == aBytes; });
  }
  std::vector<std::string> GetEntries(int aID) const { return WindowHands::GetEntries(Get<QComboBox>(aID)); }

  krtest::SerialAdapter mDevice;
  std::shared_ptr<krtest::SerialLine> mLine;
  std::shared_ptr<krtest::SerialLine> mBulk;
  std::unique_ptr<KrSerialTerminalWnd> mWindow = std::make_unique<KrSerialTerminalWnd>();
};

} // namespace krgui
