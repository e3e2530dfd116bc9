#pragma once
// The serial terminal of the viewer: a window of its own on the device that the camera's thread lends. Ports, bytes and
// the window itself are the library's.

#include "krdevice/ikrdeviceadapter.h"
#include "krgui/krserialterminalwnd.h"
#include "loan.h"

namespace krviewer {

/// Thread: user interface. Ownership: borrows what lends the device, to which it is given back before either ends.
class SerialTerminal {
public:
  KrSerialTerminalWnd& GetWindow() { return mWindow; }
  /// Opens the window over another one, or brings it to the front where it is open.
  KrResult Show(HWND aOwner);
  /// Talks to the device that is lent, and gives back one that is wanted back; to be called often, also while a message
  /// box of the window is open.
  void Follow(Loan<IKrDeviceAdapter>& aDevice);
  /// Ends what the window does with the device, and gives it back.
  void GiveBack(Loan<IKrDeviceAdapter>& aDevice);
  /// Closes the window, if it is open.
  void Close();
  /// Whether there is a device to talk to.
  bool HasDevice() const { return mDevice != nullptr; }

private:
  KrSerialTerminalWnd mWindow;
  IKrDeviceAdapter* mDevice = nullptr; ///< What was borrowed; null while nothing is.
};

} // namespace krviewer
