#pragma once
// Says which program this is, and of which versions of what it is made.

#include <QStringList>

class QWidget;

namespace krviewer {

// Thread: user interface.

/// The lines of the box. aLibraries are those beside the toolkit, with their versions.
QString MakeAboutText(const QStringList& aLibraries);
/// Opens the box over a window, or brings it to the front where it is open; it waits for nobody.
void ShowAboutBox(QWidget& aWindow, const QStringList& aLibraries);

} // namespace krviewer
