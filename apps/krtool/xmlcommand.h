#pragma once
// The command "xml": the description of a device's features, as the device gives it.

#include "commandline.h"
#include "krsystem/krsystem.h"

#include <ostream>

namespace krtool {

/// Writes the text to aOut, byte by byte, or in one step into the file that the command line names. It is neither
/// looked at nor changed, only unpacked. Gives the program's exit code.
int RunXml(KrSystem& aSystem, const CommandLine& aCommandLine, std::ostream& aOut, std::ostream& aErrors);

} // namespace krtool
