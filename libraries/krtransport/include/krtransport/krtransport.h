#pragma once
// By what a program's devices can be reached: what it decides, and what that stands on.

#include "krbase/krresult.h"
#include "krbase/krstring.h"
#include "krbase/krstringlist.h"

/// Which backends a program wants.
struct KrTransportSelection {
  bool gigEVision = true;  ///< Real GigE Vision devices.
  bool usb3Vision = true;  ///< Real USB3 Vision devices.
  bool simulation = false; ///< A simulated lab.
  KrString labFile = {};   ///< The lab's description (docs/simulation.md); the built-in lab where it is empty.
};

/// Registers backends for the whole process; call it once, before devices are looked for. A backend that is registered
/// already stays as it is. NotFound for a lab file that is not there, InvalidInput for what is no file, AccessDenied or
/// SystemError for one that cannot be read, BadData, with line, column and reason, for one that is no good, WrongState
/// for a lab file when another lab was installed before; then nothing is registered. Any thread.
///
/// When a real camera is opened for the first time, handlers are set (g_log_set_handler) that bring the records of
/// GLib, and those without a domain, which Aravis writes, into KrLogger. GLib's writer and default handler stay the
/// application's, and a handler of its own for these domains has precedence where it is set later.
///
///     int main() {
///       KrResult result = KrInstallTransports({.gigEVision = true, .simulation = true});
///     }
KR_EXPORT KrResult KrInstallTransports(const KrTransportSelection& aSelection);

/// The libraries that the backends stand on, each with the version that is loaded, for people: "Aravis 0.8.26". Any
/// thread.
KR_EXPORT KrStringList KrGetTransportLibraries();
