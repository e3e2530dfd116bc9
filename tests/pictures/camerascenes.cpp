#include "camerabridge/camerabridgeids.h"
#include "krgui/krcamerabridgemanagerwnd.h"
#include "scene.h"
#include "scenes.h"

#include <QAbstractButton>
#include <QComboBox>

namespace scene {

void TakeCameraBridges(PictureBook& aBook) {
  const std::unique_ptr<KrDevice> device = OpenDevice("sim-grabber");
  KrCameraBridgeManagerWnd cameras;
  Require(cameras.SetDevice(device.get()));
  QWidget& window = Show(cameras, 760, 570);
  Await("answer of the frame grabber", [&] { return Get(window, krgui::cameraid::kPoCL).isEnabled(); });
  aBook.Save(window, "camera-bridges-none");
  Get<QAbstractButton>(window, krgui::cameraid::kGenCP).click();
  Await("description", [&] { return Get<QComboBox>(window, krgui::cameraid::kGenCPXML).count() > 0; });
  Get<QAbstractButton>(window, krgui::cameraid::kGenCPConnect).click();
  AwaitFeatures(window);
  Pick(window, krgui::cameraid::kSource, "Source1");
  Get<QAbstractButton>(window, krgui::cameraid::kSynchronization).click();
  aBook.Save(window, "camera-bridges");

  Pick(window, krgui::cameraid::kDevicePort, "Serial1");
  Get<QAbstractButton>(window, krgui::cameraid::kCLProtocol).click();
  aBook.Save(window, "camera-bridges-clprotocol");
  Get<QAbstractButton>(window, krgui::cameraid::kCameraFile).click();
  aBook.Save(window, "camera-bridges-file");
}

} // namespace scene
