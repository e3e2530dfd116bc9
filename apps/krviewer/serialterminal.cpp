#include "serialterminal.h"

#include <QWidget>

namespace krviewer {

KrResult SerialTerminal::Show(HWND aOwner) {
  QWidget* const widget = mWindow.GetWidget();
  if (!widget) {
    // The window forgets a device without ports, and is to say anew that it has none.
    [[maybe_unused]] const KrResult set = mWindow.SetDevice(mDevice); // Stored alone: always OK.
    return mWindow.ShowModeless(aOwner);
  }
  if (widget->isMinimized())
    widget->showNormal();
  widget->raise();
  widget->activateWindow();
  return {};
}

void SerialTerminal::Close() {
  [[maybe_unused]] const KrResult closed = mWindow.Close(); // What is closed stays closed.
}

void SerialTerminal::Follow(Loan<IKrDeviceAdapter>& aDevice) {
  if (aDevice.IsWantedBack())
    GiveBack(aDevice);
  IKrDeviceAdapter* const device = aDevice.Borrow();
  if (!device)
    return;
  mDevice = device;
  // A device without ports leaves the window empty, which says enough. While a message box of the window is open, the
  // device may be given back; nothing of it is touched here afterwards.
  [[maybe_unused]] const KrResult set = mWindow.SetDevice(device);
}

void SerialTerminal::GiveBack(Loan<IKrDeviceAdapter>& aDevice) {
  mDevice = nullptr;
  // It returns when no thread of the window uses the device any more.
  [[maybe_unused]] const KrResult set = mWindow.SetDevice(nullptr); // Always OK.
  aDevice.GiveBack();
}

} // namespace krviewer
