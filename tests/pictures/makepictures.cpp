// Takes the pictures of all windows of the library on the simulated lab:
//   makepictures FOLDER [SUFFIX [dark]]
//   makepictures FOLDER SUFFIX add NAME FILE    takes in a picture that another program has taken
// SUFFIX goes behind each name. At which scale is the toolkit's business (QT_SCALE_FACTOR).

#include "darkpalette.h"
#include "krtransport/krtransport.h"
#include "scene.h"
#include "scenes.h"

#include <QApplication>

#include <iostream>

namespace {

constexpr void (*kScenes[])(PictureBook&) = {scene::TakeDisplay,  scene::TakeFinder,        scene::TakeBrowser,
                                             scene::TakeTerminal, scene::TakeSerialBridges, scene::TakeCameraBridges};

void TakeAll(PictureBook& aBook) {
  scene::Require(KrInstallTransports({.gigEVision = false, .usb3Vision = false, .simulation = true}));
  for (const auto take : kScenes)
    take(aBook);
}

} // namespace

int main(int aCount, char** aArguments) {
  QApplication application(aCount, aArguments);
  const QStringList arguments = QApplication::arguments();
  const bool isAdding = arguments.size() == 6 && arguments[3] == "add";
  if (!isAdding && (arguments.size() < 2 || arguments.size() > 4)) {
    std::cerr << "usage: makepictures FOLDER [SUFFIX [dark | add NAME FILE]]\n";
    return 64;
  }
  QApplication::setQuitOnLastWindowClosed(false);
  QApplication::setFont(QFont("DejaVu Sans", 9));
  if (arguments.value(3) == "dark")
    QApplication::setPalette(krgui::MakeDarkPalette());
  try {
    PictureBook book(arguments[1], arguments.value(2));
    if (isAdding)
      book.Save(QImage(arguments[5]), arguments[4]);
    else
      TakeAll(book);
    std::cout << book.GetCount() << " pictures in " << arguments[1].toStdString() << '\n';
  } catch (const std::exception& failure) {
    std::cerr << "makepictures: " << failure.what() << '\n';
    return 1;
  }
  return 0;
}
