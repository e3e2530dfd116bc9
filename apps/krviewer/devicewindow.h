#pragma once
// A window of its own on the device that the camera's thread lends: opened when the user asks for it, with the device
// for as long as that is lent, whether it is open or not. What it shows is left to the classes derived from it.

#include "krdevice/ikrdeviceadapter.h"
#include "krgui/krwnd.h"
#include "loan.h"

namespace krviewer {

/// Thread: user interface. Ownership: borrows what lends the device, to which it is given back before either ends.
class DeviceWindow {
public:
  DeviceWindow(const DeviceWindow&) = delete;
  DeviceWindow& operator=(const DeviceWindow&) = delete;

  virtual KrWnd& GetWindow() = 0;
  /// Opens the window over another one, or brings it to the front where it is open.
  KrResult Show(HWND aOwner);
  /// Closes the window, if it is open.
  void Close();
  /// Takes the device that is lent, and gives back one that is wanted back; to be called often, also while a message
  /// box of the window is open.
  void Follow(Loan<IKrDeviceAdapter>& aDevice);
  /// Ends what is done with the device, and gives it back.
  void GiveBack(Loan<IKrDeviceAdapter>& aDevice);
  bool HasDevice() const { return mDevice != nullptr; }

protected:
  DeviceWindow() = default;
  virtual ~DeviceWindow() = default;

  /// A device to work with. May show a message box: when it returns the device may have gone.
  virtual void TakeDevice(IKrDeviceAdapter& aDevice) = 0;
  /// The device is about to end: returns when nothing uses it any more.
  virtual void DropDevice() = 0;
  /// The window is about to be opened, with or without a device.
  virtual void PrepareShowing() {}
  IKrDeviceAdapter* GetDevice() const { return mDevice; }

private:
  IKrDeviceAdapter* mDevice = nullptr; ///< What was borrowed; null while nothing is.
};

} // namespace krviewer
