#pragma once
// A window of its own on the device that the camera's thread lends: opened when the user asks for it, with the device
// for as long as that is lent, whether it is open or not. What it shows is left to the classes derived from it.

#include "acquisition/lentdevice.h"
#include "acquisition/loan.h"
#include "krgui/krwnd.h"

#include <cstdint>

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
  /// box or another loop of the window runs.
  void Follow(Loan<LentDevice>& aDevice);
  /// Ends what is done with the device, and gives it back; also from a loop that runs because that takes a while.
  void GiveBack(Loan<LentDevice>& aDevice);
  bool HasDevice() const { return mDevice != nullptr; }

protected:
  DeviceWindow() = default;
  virtual ~DeviceWindow() = default;

  /// A device to work with. May run a loop: when it returns the device may have gone.
  virtual void TakeDevice(LentDevice& aDevice) = 0;
  /// The device is about to end: returns when nothing uses it any more. May run a loop, in which it is called again
  /// when that has to be at once; both return then.
  virtual void DropDevice() = 0;
  /// The window is about to be opened, with or without a device.
  virtual void PrepareShowing() {}
  LentDevice* GetDevice() const { return mDevice; }
  /// Another number for each device that is borrowed.
  std::uint64_t GetLoan() const { return mLoan; }
  /// Whether it is still that one.
  bool IsLent(std::uint64_t aLoan) const { return mDevice && mLoan == aLoan; }

private:
  LentDevice* mDevice = nullptr; ///< What was borrowed; null while nothing is.
  std::uint64_t mLoan = 0;
  bool mIsDropping = false; ///< It is not given back yet.
};

} // namespace krviewer
