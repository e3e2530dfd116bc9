#pragma once
// The command "list": one round of discovery, written out, or what was found out about why devices are missing.

#include "commandline.h"
#include "krsystem/krsystem.h"

#include <ostream>

namespace krtool {

/// Finds devices and writes them, with who controls those that can be asked; or watches (RunWatch), or writes why
/// devices may be missing. Gives the program's exit code, which is 3 where there are such reasons.
int RunList(KrSystem& aSystem, const CommandLine& aCommandLine, std::ostream& aOut, std::ostream& aErrors);

} // namespace krtool
