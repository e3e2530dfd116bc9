#pragma once
// Says which program this is, and of which versions of what it is made.

#include <QString>

class QWidget;

namespace krviewer {

/// The lines of the box. Thread: user interface.
QString GetAboutText();
/// Opens the box over a window, or brings it to the front where it is open; it waits for nobody.
void ShowAboutBox(QWidget& aWindow);

} // namespace krviewer
