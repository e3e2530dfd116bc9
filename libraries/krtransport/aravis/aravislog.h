#pragma once
// Brings what Aravis and GLib have to say into the system's diagnostics, instead of to standard error.

namespace krtransport {

/// Installs the writer, once for the process. Records of other GLib users of the process go where they went before, if
/// they name their domain. Any thread.
void InstallAravisLog();

} // namespace krtransport
