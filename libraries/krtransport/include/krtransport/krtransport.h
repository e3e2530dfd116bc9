#pragma once
// The one public call by which a program decides what its devices can be reached by.

#include "krbase/krresult.h"

/// Which backends a program wants.
struct KrTransportSelection {
  bool gigEVision = true;  ///< Real GigE Vision devices.
  bool usb3Vision = true;  ///< Real USB3 Vision devices.
  bool simulation = false; ///< The built-in simulated lab.
};

/// Registers backends for the whole process; call it once, before devices are looked for. A backend that is registered
/// already stays as it is. Any thread.
///
///     int main() {
///       KrResult result = KrInstallTransports({.gigEVision = true, .simulation = true});
///     }
KR_EXPORT KrResult KrInstallTransports(const KrTransportSelection& aSelection);
