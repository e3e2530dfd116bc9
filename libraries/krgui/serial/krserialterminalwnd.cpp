#include "krgui/krserialterminalwnd.h"

#include "serial/serialterminalwnd.h"

KrSerialTerminalWnd::KrSerialTerminalWnd() {
  mWnd = std::make_unique<krgui::SerialTerminalWnd>();
}

KrSerialTerminalWnd::~KrSerialTerminalWnd() {
  DeleteWnd();
}

krgui::SerialTerminalWnd& KrSerialTerminalWnd::GetWnd() const {
  return static_cast<krgui::SerialTerminalWnd&>(*mWnd);
}

KrResult KrSerialTerminalWnd::SetDevice(IKrDeviceAdapter* aAdapter) {
  return GetWnd().SetDevice(aAdapter);
}

KrDeviceSerial KrSerialTerminalWnd::GetSerialPort() const {
  return GetWnd().GetSerialPort();
}

KrResult KrSerialTerminalWnd::SetSerialPort(KrDeviceSerial aPort) {
  return GetWnd().SetSerialPort(aPort);
}
