#pragma once
// The command "list": one round of discovery, written out.

#include "commandline.h"
#include "krsystem/krsystem.h"

#include <ostream>

namespace krtool {

/// Finds devices and writes them. Gives the program's exit code.
int RunList(KrSystem& aSystem, const CommandLine& aCommandLine, std::ostream& aOut, std::ostream& aErrors);

} // namespace krtool
