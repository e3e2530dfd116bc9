#pragma once
// The serial terminal of the viewer. Ports, bytes and the window itself are the library's.

#include "bridges/devicewindow.h"
#include "krgui/krserialterminalwnd.h"

namespace krviewer {

class SerialTerminal : public DeviceWindow {
public:
  KrSerialTerminalWnd& GetWindow() override { return mWindow; }

private:
  void TakeDevice(LentDevice& aDevice) override;
  void DropDevice() override;
  void PrepareShowing() override;

  KrSerialTerminalWnd mWindow;
};

} // namespace krviewer
