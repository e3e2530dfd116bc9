#pragma once
// What tests of the serial bridge manager share: a host with COM ports, a device with three lines, a window on it whose
// controls can be had, and a user's hands.

#include "bridgehost.h"
#include "krgui/krserialbridgemanagerwnd.h"
#include "serial/serialbridgeids.h"
#include "serialadapter.h"
#include "testwnd.h"
#include "windowhands.h"
#include "windowwait.h"

#include <QAbstractButton>
#include <QComboBox>
#include <QLabel>
#include <QPushButton>
#include <QRadioButton>
#include <QTest>

#include <gmock/gmock.h>

#include <memory>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace krgui {

using namespace std::string_literals;

/// The controls by their ids.
namespace id = bridgeid;

class BridgeTest : public testing::Test, protected WindowHands {
protected:
  /// The entries of the device's port list.
  enum Port { Serial0, Serial1, Bulk0 };
  /// The entries of the COM port list.
  enum COMPort { COM1, COM3, COM12 };

  BridgeTest() {
    for (const int number : {1, 3, 12})
      mHost.AddPort(number);
    for (const std::uint32_t number : {0U, 1U, 2U})
      mLines.push_back(mDevice.AddLine(number));
  }
  ~BridgeTest() override {
    mWindow.reset();
    DeleteWhatIsLeft();
  }

  /// Opens the window on the device.
  void Open() {
    ASSERT_TRUE(mWindow->SetDevice(&mDevice).IsOK());
    ASSERT_TRUE(mWindow->ShowModeless(0).IsOK());
    ASSERT_TRUE(krtest::AwaitActive(mWindow->GetWidget()));
  }
  /// Opens it, and picks the device's second port, which keeps its selection.
  void OpenOnSerial1() {
    Open();
    PickPort(Serial1);
  }
  /// Links the selected port.
  void Link(COMPort aPort) {
    Click(id::kCOMPortLink);
    Pick(Get<QComboBox>(id::kCOMPort), aPort);
  }
  /// The port Serial1 tells these rates, and the first one as its own.
  void SetRates(const std::vector<std::string>& aRates) {
    mDevice.enumerations["Uart1BaudRate"] = {aRates, aRates.front()};
  }

  template <typename Control = QWidget>
  Control& Get(int aID) const {
    auto* control = mWindow->GetWidget()->findChild<Control*>(QStringLiteral("control%1").arg(aID));
    if (control == nullptr)
      throw std::runtime_error("no control " + std::to_string(aID));
    return *control;
  }
  void Click(int aID) const { Get<QAbstractButton>(aID).click(); }
  void PickPort(Port aPort) const { Pick(Get<QComboBox>(id::kDevicePort), aPort); }
  std::string GetText(int aID) const { return Get<QLabel>(aID).text().toStdString(); }
  std::string GetSelected(int aID) const { return Get<QComboBox>(aID).currentText().toStdString(); }
  bool IsEnabled(int aID) const { return Get(aID).isEnabled(); }
  /// The kind that is checked, as its button is called.
  std::string GetKind() const {
    for (const int button : {id::kNone, id::kCOMPortLink, id::kCameraLink}) {
      if (Get<QRadioButton>(button).isChecked())
        return Get<QRadioButton>(button).text().remove(QLatin1Char('&')).toStdString();
    }
    return "none is checked";
  }
  /// "-" for a rate that is disabled and normal, "e" for one that is enabled, "B" if it is bold as well, else "?".
  std::string GetRates() const {
    std::string rates;
    for (const int rate : id::kRates) {
      const QWidget& label = Get(rate);
      const bool isBold = label.font().weight() == QFont::Bold;
      rates += label.isEnabled() ? (isBold ? 'B' : 'e') : (isBold ? '?' : '-');
    }
    return rates;
  }

  using Settings = std::vector<std::pair<std::string, std::string>>;
  Settings Save() const {
    KrPropertyList list;
    list.Add({"left", "over"});
    EXPECT_TRUE(mWindow->Save(list).IsOK());
    Settings settings;
    for (const KrProperty& property : list)
      settings.emplace_back(property.GetName().ToUtf8(), property.GetValue().ToUtf8());
    return settings;
  }
  std::vector<std::string> Load(const Settings& aSettings) const {
    KrPropertyList list;
    for (const auto& [name, value] : aSettings)
      list.Add({KrString(name), KrString(value)});
    KrStringList errors;
    EXPECT_TRUE(mWindow->Load(list, errors).IsOK());
    std::vector<std::string> texts;
    for (const KrString& text : errors)
      texts.push_back(text.ToUtf8());
    return texts;
  }

  krtest::BridgeHost mHost;
  krtest::SerialAdapter mDevice;
  std::vector<std::shared_ptr<krtest::SerialLine>> mLines;
  std::unique_ptr<KrSerialBridgeManagerWnd> mWindow = std::make_unique<KrSerialBridgeManagerWnd>();
};

} // namespace krgui
