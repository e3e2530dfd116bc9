#include "bridgehost.h"
#include "krdevice/krdeviceadapter.h"
#include "krgui/krserialbridgemanagerwnd.h"
#include "krgui/krserialterminalwnd.h"
#include "popups.h"
#include "scene.h"
#include "scenes.h"
#include "serial/rollingedit.h"
#include "serial/serialbridgeids.h"
#include "serial/terminalids.h"

#include <QAbstractButton>
#include <QApplication>
#include <QComboBox>
#include <QContextMenuEvent>
#include <QLabel>
#include <QLineEdit>

namespace scene {

namespace {

namespace id = krgui::terminalid;

void TakeTerminalStates(PictureBook& aBook, QWidget& aWindow) {
  const auto click = [&aWindow](int aButton) { Get<QAbstractButton>(aWindow, aButton).click(); };
  click(id::kShowHybrid);
  click(id::kOther);
  Get<QLineEdit>(aWindow, id::kOtherField).setText("0D 0A");
  click(id::kPause);
  Focus(*aWindow.findChild<krgui::RollingEdit*>());
  aBook.Save(aWindow, "terminal-hybrid");
  click(id::kSendHexadecimal);
  Get<QLineEdit>(aWindow, id::kData).setText("2A 49 44 4E 3G");
  click(id::kShowHexadecimal);
  Focus(Get(aWindow, id::kSend));
  aBook.Save(aWindow, "terminal-hexadecimal");
  auto& transcript = *aWindow.findChild<krgui::RollingEdit*>();
  SavePopup(aBook, "terminal-menu", [&transcript] {
    QContextMenuEvent event(QContextMenuEvent::Mouse, {20, 20}, transcript.viewport()->mapToGlobal(QPoint(20, 20)));
    QApplication::sendEvent(transcript.viewport(), &event);
  });
  Pick(aWindow, id::kPort, "Bulk0");
  aBook.Save(aWindow, "terminal-bulk");
  SavePopup(aBook, "terminal-ports", [&aWindow] { Get<QComboBox>(aWindow, id::kPort).showPopup(); });
}

} // namespace

void TakeTerminal(PictureBook& aBook) {
  const std::unique_ptr<KrDevice> device = OpenDevice("sim-mono");
  KrDeviceAdapter adapter(*device);
  KrSerialTerminalWnd terminal;
  Require(terminal.SetDevice(&adapter));
  QWidget& window = Show(terminal, 600, 600);
  const auto* const transcript = window.findChild<krgui::RollingEdit*>();
  const auto send = [&](const QString& aText, std::u16string_view aAnswer) {
    Get<QLineEdit>(window, krgui::terminalid::kData).setText(aText);
    Get<QAbstractButton>(window, krgui::terminalid::kSend).click();
    Await("answer", [&] { return transcript && transcript->GetShownText().find(aAnswer) != std::u16string::npos; });
  };
  send("*IDN?", u"Simulated Instrument");
  send("VALUE 42", u"OK");
  send("HELP", u"this");
  aBook.Save(window, "terminal");
  TakeTerminalStates(aBook, window);
}

void TakeSerialBridges(PictureBook& aBook) {
  krtest::BridgeHost host; // Ports of its own; nothing of the computer's is shown.
  host.AddPort(1);
  const std::unique_ptr<KrDevice> device = OpenDevice("sim-mono");
  KrDeviceAdapter adapter(*device);
  KrSerialBridgeManagerWnd bridges;
  Require(bridges.SetDevice(&adapter));
  QWidget& window = Show(bridges, 560, 440);
  aBook.Save(window, "bridges-none");
  Pick(window, krgui::bridgeid::kDevicePort, "Bulk0");
  Get<QAbstractButton>(window, krgui::bridgeid::kCOMPortLink).click();
  Pick(window, krgui::bridgeid::kDevicePort, "Bulk0");
  Pick(window, krgui::bridgeid::kCOMPort, "COM1");
  Await("bridge", [&] { return !Get<QLabel>(window, krgui::bridgeid::kBytesSent).text().isEmpty(); });
  aBook.Save(window, "bridges");
  InDialog([&] { Get<QAbstractButton>(window, krgui::bridgeid::kConfigure).click(); },
           [&](QWidget& aDialog) { aBook.Save(aDialog, "bridges-port"); });
  Pick(window, krgui::bridgeid::kDevicePort, "Serial0");
  Get<QAbstractButton>(window, krgui::bridgeid::kCameraLink).click();
  aBook.Save(window, "bridges-cameralink");
  bridges.SetPosition(20, 20, 500, 300);
  aBook.Save(window, "bridges-small");
}

} // namespace scene
