#pragma once
// Lists the keys of a window's entries, as they are: no list of its own could go stale.

class QWidget;

namespace krviewer {

/// Opens the list over a window, or brings it to the front where it is open; it waits for nobody. Thread: user
/// interface.
void ShowKeysBox(QWidget& aWindow);

} // namespace krviewer
