#include "bridges/serialterminal.h"

namespace krviewer {

void SerialTerminal::TakeDevice(LentDevice& aDevice) {
  // A device without ports leaves the window empty, which says enough.
  [[maybe_unused]] const KrResult set = mWindow.SetDevice(&aDevice.adapter);
}

void SerialTerminal::DropDevice() {
  // It returns when no thread of the window uses the device any more.
  [[maybe_unused]] const KrResult set = mWindow.SetDevice(nullptr); // Always OK.
}

void SerialTerminal::PrepareShowing() {
  // The window forgets a device without ports, and is to say anew that it has none.
  [[maybe_unused]] const KrResult set =
      mWindow.SetDevice(GetDevice() ? &GetDevice()->adapter : nullptr); // Stored alone: always OK.
}

} // namespace krviewer
