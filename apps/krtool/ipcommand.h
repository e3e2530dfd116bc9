#pragma once
// The command "ip": the address of one device, shown, repaired until its next start, and set for good.

#include "commandline.h"
#include "krsystem/krsystem.h"

#include <ostream>

namespace krtool {

/// Shows the device's addresses, after it has changed what the command line wishes. Everything is checked before the
/// first change; what is doubtful is told of on aErrors, and taken with --force alone. A new address is waited for
/// until the device answers there. Gives the program's exit code.
int RunIP(KrSystem& aSystem, const CommandLine& aCommandLine, std::ostream& aOut, std::ostream& aErrors);

} // namespace krtool
