#pragma once
// The serial terminal: a window to talk to a device's serial ports.

#include "krgui/krwnd.h"
#include "krserial/krdeviceserial.h"

class IKrDeviceAdapter;

namespace krgui {
class SerialTerminalWnd;
}

/// The serial terminal.
///
/// Thread: the user-interface thread alone. Bytes are received and files sent on threads of the window's own.
/// Ownership: the application owns the object; the adapter is borrowed and must be taken out (SetDevice with null), or
/// the window closed, before it ends.
///
///     KrDeviceAdapter adapter(*device);
///     KrSerialTerminalWnd terminal;
///     terminal.SetDevice(&adapter);
///     KrResult result = terminal.ShowModeless(0);
class KR_EXPORT KrSerialTerminalWnd : public KrWnd {
public:
  KrSerialTerminalWnd();
  ~KrSerialTerminalWnd() override;

  /// Talks to a device, or to none for null. An open window lists its ports and opens the stored one, or else the first
  /// it has; NotSupported (26) for a device without a port, which is forgotten then. Before the window is open the
  /// device is only stored: OK.
  KrResult SetDevice(IKrDeviceAdapter* aAdapter);
  /// The port in use.
  KrDeviceSerial GetSerialPort() const;
  /// Chooses a port; an open window opens it, and shows a failure to the user. NotSupported (26) for one that the
  /// device lacks; then nothing changes. Without a device the port is only stored: OK.
  KrResult SetSerialPort(KrDeviceSerial aPort);

private:
  krgui::SerialTerminalWnd& GetWnd() const;
};
