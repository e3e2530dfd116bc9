// Takes the pictures of all windows of the library, and of the viewer, on the simulated lab:
//   makepictures FOLDER [SUFFIX [light|dark [POINTS [SCENE ...]]]]
// SUFFIX goes behind each name, POINTS is the letters' size. At which scale is the toolkit's business
// (QT_SCALE_FACTOR). Texts that cannot be read are a failure.

#include "darkpalette.h"
#include "krtransport/krtransport.h"
#include "scene.h"
#include "scenes.h"
#include "window/viewericon.h"

#include <QApplication>

#include <iostream>

namespace {

struct Scene {
  const char* name;
  void (*take)(PictureBook&);
};

constexpr Scene kScenes[] = {
    {"display", scene::TakeDisplay},
    {"finder", scene::TakeFinder},
    {"browser", scene::TakeBrowser},
    {"editors", scene::TakeBrowserEditors},
    {"terminal", scene::TakeTerminal},
    {"bridges", scene::TakeSerialBridges},
    {"camerabridges", scene::TakeCameraBridges},
    {"boxes", scene::TakeBoxes},
    {"endings", scene::TakeViewerEndings},
    {"viewer", scene::TakeViewer},
    {"firstpage", scene::TakeViewerFirstPage},
    {"regions", scene::TakeViewerRegions},
    {"tabs", scene::TakeViewerTabs},
    {"panels", scene::TakeViewerPanels},
    {"docks", scene::TakeViewerDocks},
    {"focus", scene::TakeViewerFocus},
    {"recording", scene::TakeViewerRecording},
    {"trouble", scene::TakeViewerTrouble},
    {"dialogs", scene::TakeViewerDialogs},
};

void TakeAll(PictureBook& aBook, const QStringList& aNames) {
  const auto isWanted = [&aNames](const char* aName) {
    return aNames.isEmpty() || aNames.contains(QLatin1String(aName));
  };
  if (isWanted("emptyfinder"))
    scene::TakeEmptyFinder(aBook);
  scene::Require(KrInstallTransports({.gigEVision = false, .usb3Vision = false, .simulation = true}));
  for (const Scene& one : kScenes)
    if (isWanted(one.name))
      one.take(aBook);
}

} // namespace

int main(int aCount, char** aArguments) {
  QApplication application(aCount, aArguments);
  const QStringList arguments = QApplication::arguments();
  if (arguments.size() < 2) {
    std::cerr << "usage: makepictures FOLDER [SUFFIX [light|dark [POINTS [SCENE ...]]]]\n";
    return 64;
  }
  QApplication::setQuitOnLastWindowClosed(false);
  krviewer::InstallViewerIcon();
  QApplication::setFont(QFont("DejaVu Sans", arguments.value(4, "9").toInt()));
  if (arguments.value(3) == "dark")
    QApplication::setPalette(krgui::MakeDarkPalette());
  try {
    PictureBook book(arguments[1], arguments.value(2));
    TakeAll(book, arguments.mid(5));
    for (const QString& fault : book.GetFaults())
      std::cerr << fault.toStdString() << '\n';
    std::cout << book.GetCount() << " pictures in " << arguments[1].toStdString() << '\n';
    return book.GetFaults().isEmpty() ? 0 : 1;
  } catch (const std::exception& failure) {
    std::cerr << "makepictures: " << failure.what() << '\n';
    return 1;
  }
}
