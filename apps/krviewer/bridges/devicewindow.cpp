#include "bridges/devicewindow.h"

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

void DeviceWindow::Follow(Loan<LentDevice>& aDevice) {
  // A device that is being dropped is given back by whoever drops it.
  if (mIsDropping)
    return;
  if (aDevice.IsWantedBack())
    GiveBack(aDevice);
  LentDevice* const device = aDevice.Borrow();
  if (!device)
    return;
  mDevice = device;
  ++mLoan;
  // While a loop of the window runs, the device may be given back; nothing of it is touched here afterwards.
  TakeDevice(*device);
}

void DeviceWindow::GiveBack(Loan<LentDevice>& aDevice) {
  if (mDevice || mIsDropping) {
    mDevice = nullptr;
    mIsDropping = true;
    DropDevice();
    // A second call, from its loop, has given the device back.
    if (!std::exchange(mIsDropping, false))
      return;
  }
  aDevice.GiveBack();
}

} // namespace krviewer
