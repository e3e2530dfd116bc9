#pragma once
// The command "ports": the serial ports of a device, and why there is none where one is missed.

#include "commandline.h"
#include "krsystem/krsystem.h"

#include <ostream>

namespace krtool {

/// Writes a line of headings and one line for each port, and for each map of which the device lacks something. The
/// device is looked at only. Gives the program's exit code.
int RunPorts(KrSystem& aSystem, const CommandLine& aCommandLine, std::ostream& aOut, std::ostream& aErrors);

} // namespace krtool
