#include "bridgehost.h"
#include "krdevice/krdeviceadapter.h"
#include "krgui/krserialbridgemanagerwnd.h"
#include "krgui/krserialterminalwnd.h"
#include "scene.h"
#include "scenes.h"
#include "serial/rollingedit.h"
#include "serial/serialbridgeids.h"
#include "serial/terminalids.h"

#include <QAbstractButton>
#include <QLabel>
#include <QLineEdit>

namespace scene {

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
}

void TakeSerialBridges(PictureBook& aBook) {
  krtest::BridgeHost host; // Ports of its own; nothing of the computer's is shown.
  host.AddPort(1);
  const std::unique_ptr<KrDevice> device = OpenDevice("sim-mono");
  KrDeviceAdapter adapter(*device);
  KrSerialBridgeManagerWnd bridges;
  Require(bridges.SetDevice(&adapter));
  QWidget& window = Show(bridges, 560, 440);
  Pick(window, krgui::bridgeid::kDevicePort, "Bulk0");
  Get<QAbstractButton>(window, krgui::bridgeid::kCOMPortLink).click();
  Pick(window, krgui::bridgeid::kDevicePort, "Bulk0");
  Pick(window, krgui::bridgeid::kCOMPort, "COM1");
  Await("bridge", [&] { return !Get<QLabel>(window, krgui::bridgeid::kBytesSent).text().isEmpty(); });
  aBook.Save(window, "bridges");
}

} // namespace scene
