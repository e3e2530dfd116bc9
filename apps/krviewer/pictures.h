#pragma once
// Pictures of the viewer's windows in a folder: for people who report a fault, and for tests that compare pixels.

#include "krgui/krdisplaywnd.h"
#include "krgui/krgenbrowserwnd.h"

#include <QString>

class QWidget;

namespace krviewer {

/// Writes into aFolder, which is made when it does not exist:
///   display.png  the display window's client area as it is on the screen,
///   frame.png    the image shown, at the camera's resolution,
///   display.txt  the overlay's text.
/// Each is there as a whole or not at all. Needs an open window that has been painted since its last image. What
/// KrAtomicFile returns, with the file's name, when one cannot be written; WrongState when the window is not open or
/// shows no image.
KrResult WritePictures(KrDisplayWnd& aWindow, const QString& aFolder);

/// Writes browser.png into aFolder, likewise: the feature browser with what it has read so far. WrongState when the
/// window is not open.
KrResult WriteBrowserPicture(KrGenBrowserWnd& aWindow, const QString& aFolder);

/// Writes window.png into aFolder, likewise: a whole window with all that is in it, as it is on the screen.
KrResult WriteWindowPicture(QWidget& aWindow, const QString& aFolder);

/// Whether windows are on no screen.
bool IsWithoutDisplay();

} // namespace krviewer
