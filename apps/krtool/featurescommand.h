#pragma once
// The command "features": all features of a device, or of a description, as a table.

#include "commandline.h"
#include "krsystem/krsystem.h"

#include <ostream>

namespace krtool {

/// Writes the table to aOut, and to aErrors how many faults the description has, or each of them. Gives the program's
/// exit code; features that cannot be read are no failure.
int RunFeatures(KrSystem& aSystem, const CommandLine& aCommandLine, std::ostream& aOut, std::ostream& aErrors);

} // namespace krtool
