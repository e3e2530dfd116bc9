#include "window/viewericon.h"

#include <QApplication>
#include <QIcon>

// Outside of any namespace, as what the call names is.
static void TakeInPictures() {
  Q_INIT_RESOURCE(krviewer);
}

namespace krviewer {

void InstallViewerIcon() {
  TakeInPictures();
  QIcon icon;
  for (const int size : {16, 24, 32, 48, 64, 128, 256})
    icon.addFile(QStringLiteral(":/desktop/krviewer-%1.png").arg(size), QSize(size, size));
  QApplication::setWindowIcon(icon);
  // Where the window system goes by the menu's entry.
  QGuiApplication::setDesktopFileName(QStringLiteral("krviewer"));
}

} // namespace krviewer
