#pragma once
// The command "stream": takes frames of one device and closes with one line of figures.

#include "commandline.h"
#include "krsystem/krsystem.h"

#include <ostream>

namespace krtool {

/// Takes the frames asked for. Once a stream has begun, exactly one closing line goes to aOut, however it ends; all
/// else goes to aErrors. Gives the program's exit code, which for a signal that ended it early is 128 and its number.
int RunStream(KrSystem& aSystem, const CommandLine& aCommandLine, std::ostream& aOut, std::ostream& aErrors);

} // namespace krtool
