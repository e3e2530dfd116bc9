#pragma once
// A system with one adapter and one device for the dialog that sets a device's IP address, and a user's hands.

#include "finder/forceipdlg.h"

#include "duringmodalloop.h"
#include "faketransport.h"
#include "finder/errorprovider.h"
#include "krbase/krlogger.h"
#include "krsystem/ipv4address.h"
#include "krsystem/krsystem.h"
#include "platform/ipaddresscontrol.h"
#include "testwnd.h"

#include <QComboBox>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

#include <gmock/gmock.h>

#include <atomic>
#include <latch>

namespace krgui {

inline constexpr const char* kMAC = "00:11:22:33:44:55";

/// Sending takes until the test lets it end.
class SlowTransport : public FakeTransport {
public:
  KrResult ConfigureIP(const KrString& aMAC, const KrString& aAddress, const KrString& aMask,
                       const KrString& aGateway) override {
    ++asked;
    if (isSlow) {
      mayEnd.wait();
    }
    return FakeTransport::ConfigureIP(aMAC, aAddress, aMask, aGateway);
  }
  std::atomic<int> asked = 0;
  bool isSlow = false;
  std::latch mayEnd{1};
};

class ForceIPDlgTest : public testing::Test {
protected:
  ForceIPDlgTest() {
    krsystem::RegisterTransport(transport);
    owner.resize(700, 600);
    owner.show();
  }
  ~ForceIPDlgTest() override {
    BackgroundTask::AwaitAbandoned();
    krsystem::UnregisterTransport(transport);
  }

  /// Makes the system with one adapter and one device.
  void MakeSystem(std::vector<krsystem::AdapterAddress> aAddresses = {{"192.168.1.10", "255.255.255.0"}},
                  const KrString& aGateway = "192.168.1.1") {
    krsystem::NetworkAdapterFields fields = MakeAdapter("eth0");
    fields.macAddress = "aa:bb:cc:dd:ee:ff";
    fields.addresses = std::move(aAddresses);
    fields.defaultGateway = aGateway;
    transport->interfaces = {fields};
    transport->answers = {{0, MakeDevice()}};
    transport->configureResult = {};
    system = std::make_unique<KrSystem>();
    ASSERT_TRUE(system->Find().IsOK());
    ASSERT_EQ(system->GetDeviceCount(), 1U);
  }

  virtual krsystem::AnyDeviceFields MakeDevice() const { return MakeCamera(kMAC, "10.9.8.7"); }

  /// Runs the dialog and acts in it.
  ModalResult Run(std::function<void(QWidget&)> aAct) {
    ForceIPDlg dialog(*system, static_cast<const KrNetworkAdapter&>(*system->GetInterface(0)),
                      *system->GetDeviceInfo(0), owner.isVisible() ? &owner : nullptr);
    DuringNextModalLoop(std::move(aAct));
    return dialog.Run();
  }

  std::shared_ptr<SlowTransport> transport = std::make_shared<SlowTransport>();
  std::unique_ptr<KrSystem> system;
  QWidget owner;
};

class ForceTolvanIPDlgTest : public ForceIPDlgTest {
protected:
  krsystem::AnyDeviceFields MakeDevice() const override {
    krsystem::TolvanProtocolFields fields;
    fields.uniqueID = kMAC;
    fields.macAddress = "00:aa:00:aa:00:aa";
    return fields;
  }
};

template <typename Control = QWidget>
Control* Get(QWidget& aDialog, int aID) {
  return aDialog.findChild<Control*>(QStringLiteral("control%1").arg(aID));
}

inline std::string GetEdit(QWidget& aDialog, int aID) {
  return Get<QLineEdit>(aDialog, aID)->text().toStdString();
}

inline std::string GetAddress(QWidget& aDialog, int aID) {
  return Get<IPAddressControl>(aDialog, aID)->GetText().toStdString();
}

inline std::string GetError(QWidget& aDialog, int aIndicatorID) {
  return static_cast<ErrorProvider*>(Get(aDialog, aIndicatorID)->children().constFirst())->GetText().toStdString();
}

/// By keys, into the control that has the focus.
inline void Type(const char* aText) {
  for (const char* character = aText; *character != '\0'; ++character) {
    QTest::keyClick(QApplication::focusWidget(), *character);
  }
}

inline void Enter(QWidget& aDialog, int aID, const char* aAddress) {
  Get<IPAddressControl>(aDialog, aID)->FocusField(0);
  for (int field = 0; field < 4; ++field) {
    Get<IPAddressControl>(aDialog, aID)->ClearField(field);
  }
  Type(aAddress);
}

/// The press alone, as the dialog may not take the release any more.
inline void Press(QWidget& aDialog, Qt::Key aKey, bool aIsRepeated = false) {
  QKeyEvent press(QEvent::KeyPress, aKey, Qt::NoModifier, QString(), aIsRepeated);
  QWidget* focused = aDialog.focusWidget();
  QApplication::sendEvent(focused != nullptr ? focused : &aDialog, &press);
}

/// What a message box says: "[its icon] its caption: its text".
inline std::string ReadBox(QWidget& aBox) {
  return '[' + aBox.findChild<QLabel*>(QStringLiteral("picture"))->accessibleName().toStdString() + "] " +
         aBox.windowTitle().toStdString() + ": " +
         aBox.findChild<QLabel*>(QStringLiteral("text"))->text().toStdString();
}

/// What the next message box said; closes it with a key.
inline void AnswerBox(std::string& aText, Qt::Key aKey) {
  DuringNextModalLoop([&aText, aKey](QWidget& aBox) {
    aText = ReadBox(aBox);
    QTest::keyClick(aBox.focusWidget(), aKey);
  });
}

inline int GetFocusedField(QWidget& aDialog) {
  const auto fields = Get(aDialog, 1038)->findChildren<QLineEdit*>();
  return static_cast<int>(fields.indexOf(qobject_cast<QLineEdit*>(QApplication::focusWidget())));
}

} // namespace krgui
