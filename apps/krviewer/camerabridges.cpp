#include "camerabridges.h"

namespace krviewer {

void CameraBridges::TakeDevice(IKrDeviceAdapter& aDevice) {
  [[maybe_unused]] const KrResult set = mWindow.SetDevice(aDevice.GetDevice()); // Always OK.
}

void CameraBridges::DropDevice() {
  // It returns when no bridge uses the device any more.
  [[maybe_unused]] const KrResult set = mWindow.SetDevice(nullptr); // Always OK.
}

} // namespace krviewer
