// Takes the pictures of all windows of the library, and of the viewer, on the simulated lab:
//   makepictures FOLDER [SUFFIX [dark]]
// SUFFIX goes behind each name. At which scale is the toolkit's business (QT_SCALE_FACTOR).

#include "darkpalette.h"
#include "krtransport/krtransport.h"
#include "scene.h"
#include "scenes.h"

#include <QApplication>

#include <iostream>

namespace {

constexpr void (*kScenes[])(PictureBook&) = {scene::TakeDisplay,  scene::TakeFinder,        scene::TakeBrowser,
                                             scene::TakeTerminal, scene::TakeSerialBridges, scene::TakeCameraBridges,
                                             scene::TakeViewer,   scene::TakeViewerPanels,  scene::TakeViewerTrouble};

void TakeAll(PictureBook& aBook) {
  scene::Require(KrInstallTransports({.gigEVision = false, .usb3Vision = false, .simulation = true}));
  for (const auto take : kScenes)
    take(aBook);
}

} // namespace

int main(int aCount, char** aArguments) {
  QApplication application(aCount, aArguments);
  const QStringList arguments = QApplication::arguments();
  if (arguments.size() < 2 || arguments.size() > 4) {
    std::cerr << "usage: makepictures FOLDER [SUFFIX [dark]]\n";
    return 64;
  }
  QApplication::setQuitOnLastWindowClosed(false);
  QApplication::setFont(QFont("DejaVu Sans", 9));
  if (arguments.value(3) == "dark")
    QApplication::setPalette(krgui::MakeDarkPalette());
  try {
    PictureBook book(arguments[1], arguments.value(2));
    TakeAll(book);
    std::cout << book.GetCount() << " pictures in " << arguments[1].toStdString() << '\n';
  } catch (const std::exception& failure) {
    std::cerr << "makepictures: " << failure.what() << '\n';
    return 1;
  }
  return 0;
}
