#pragma once
// The guide that is installed with the program, in a window beside the viewer's. What it says is written in the
// documents.

#include <QString>

class QWidget;

namespace krviewer {

// Thread: user interface.

/// Opens the guide over a window, or brings it to the front where it is open; it waits for nobody. False where aFile,
/// a document in Markdown, cannot be read.
bool ShowGuide(QWidget& aWindow, const QString& aFile);

} // namespace krviewer
