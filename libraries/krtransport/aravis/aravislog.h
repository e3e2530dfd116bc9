#pragma once
// Brings what Aravis and GLib have to say into the system's diagnostics, instead of to standard error. How the
// application takes other records of GLib is left to it: a process has one place for a writer, which is the
// application's.

namespace krtransport {

/// Installs handlers for the domains of Aravis (which names none) and GLib, once for the process. Records of other
/// domains go where they went before, and a handler that is set later for one of these has precedence. Any thread.
void InstallAravisLog();

} // namespace krtransport
