#include "devicewindow.h"

#include <QWidget>

#include <utility>

namespace krviewer {

KrResult DeviceWindow::Show(HWND aOwner) {
  QWidget* const widget = GetWindow().GetWidget();
  if (!widget) {
    PrepareShowing();
    return GetWindow().ShowModeless(aOwner);
  }
  if (widget->isMinimized())
    widget->showNormal();
  widget->raise();
  widget->activateWindow();
  return {};
}

void DeviceWindow::Close() {
  [[maybe_unused]] const KrResult closed = GetWindow().Close(); // What is closed stays closed.
}

void DeviceWindow::Follow(Loan<IKrDeviceAdapter>& aDevice) {
  if (aDevice.IsWantedBack())
    GiveBack(aDevice);
  IKrDeviceAdapter* const device = aDevice.Borrow();
  if (!device)
    return;
  mDevice = device;
  // While a message box of the window is open, the device may be given back; nothing of it is touched here afterwards.
  TakeDevice(*device);
}

void DeviceWindow::GiveBack(Loan<IKrDeviceAdapter>& aDevice) {
  if (std::exchange(mDevice, nullptr))
    DropDevice();
  aDevice.GiveBack();
}

} // namespace krviewer
