#include "krdevice/krstream.h"
#include "krgui/krdisplaywnd.h"
#include "scene.h"
#include "scenes.h"

namespace scene {

void TakeDisplay(PictureBook& aBook) {
  const std::unique_ptr<KrDevice> device = OpenDevice("sim-colour");
  KrDisplayWnd display;
  display.SetTextOverlay("An overlay of the application's\nin any number of lines");
  display.SetTextOverlayColor(255, 255, 255);
  QWidget& window = Show(display, 640, 400);
  KrStream stream(*device);
  Require(stream.Start());
  KrBuffer* buffer = nullptr;
  Require(stream.Retrieve(buffer, krtest::kGenerousMs));
  Require(display.Display(*buffer, false));
  Require(stream.Release(buffer));
  Await("picture", [&] { return display.GetStatistics().shown > 0; });
  aBook.Save(window, "display");
}

} // namespace scene
