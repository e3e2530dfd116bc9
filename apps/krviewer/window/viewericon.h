#pragma once
// The picture by which the desktop shows the program's windows.

namespace krviewer {

/// Gives it to all windows of the program. Thread: user interface.
void InstallViewerIcon();

} // namespace krviewer
