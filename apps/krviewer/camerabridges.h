#pragma once
// The camera bridges of the viewer, for a frame grabber whose cameras have features of their own. The bridges and the
// window itself are the library's.

#include "devicewindow.h"
#include "krgui/krcamerabridgemanagerwnd.h"

namespace krviewer {

class CameraBridges : public DeviceWindow {
public:
  KrCameraBridgeManagerWnd& GetWindow() override { return mWindow; }
  /// The device has ports behind which there may be cameras.
  bool HasPorts() { return mWindow.GetBridgeCount() > 0; }

private:
  void TakeDevice(IKrDeviceAdapter& aDevice) override;
  void DropDevice() override;

  KrCameraBridgeManagerWnd mWindow;
};

} // namespace krviewer
