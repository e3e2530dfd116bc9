#include "krdevice/krstream.h"
#include "krgui/krdisplaywnd.h"
#include "popups.h"
#include "scene.h"
#include "scenes.h"

#include <QApplication>
#include <QContextMenuEvent>
#include <QCursor>
#include <QScrollBar>

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

  QWidget& view = *window.findChild<QWidget*>("display");
  SavePopup(aBook, "display-menu", [&view] {
    const QPoint point = view.rect().center();
    QContextMenuEvent event(QContextMenuEvent::Mouse, point, view.mapToGlobal(point));
    QApplication::sendEvent(&view, &event);
  });
  display.SetCursorLineEnabled(true);
  display.Zoom1_1();
  Await("scroll bar", [&window] {
    const auto* const bar = window.findChild<QScrollBar*>();
    return bar && bar->isVisible();
  });
  QCursor::setPos(view.mapToGlobal(view.rect().center()));
  aBook.Save(window, "display-zoomed");
}

} // namespace scene
