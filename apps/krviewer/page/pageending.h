#pragma once
// The end of a camera's page: the pictures that were asked for, and the figures that are printed.

#include <QString>

namespace krviewer {

class CameraPage;

// Thread: user interface.

/// Ends a page that is on the screen, with pictures of its display and its features in a folder, if it has shown any
/// frame. False, told on the error stream, where a picture could not be written.
bool EndWithPictures(CameraPage& aPage, const QString& aFolder);

/// Prints what came of a page that has ended; aPrefix comes before it.
void PrintFigures(const CameraPage& aPage, const QString& aPrefix);

} // namespace krviewer
