#pragma once
// The end of a camera's page: the pictures that were asked for, and the figures that are printed.

#include <QString>

namespace krviewer {

class CameraPage;

/// Ends a page that is on the screen. aPictureFolder gets the pictures of its display and its features, if it has shown
/// any frame; empty for none. aPrefix comes before the line of figures. False, told on the error stream, where a
/// picture could not be written. Thread: user interface.
bool EndWithFigures(CameraPage& aPage, const QString& aPictureFolder, const QString& aPrefix);

} // namespace krviewer
