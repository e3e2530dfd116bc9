#pragma once
// The command "list --watch": discovery without end, and a line for everything new.

#include "commandline.h"
#include "krsystem/krsystem.h"

#include <functional>
#include <ostream>

namespace krtool {

/// Goes on looking and writes news until Ctrl-C, until the time of the command line is over or until nobody reads
/// aOut any more. A discovery that fails is told of on aErrors, and tried again. Gives the program's exit code: 0.
int RunWatch(KrSystem& aSystem, const CommandLine& aCommandLine, std::ostream& aOut, std::ostream& aErrors);

/// The same, ended by aIsStopped, which is asked every few hundredths of a second.
int WatchUntil(KrSystem& aSystem, const CommandLine& aCommandLine, const std::function<bool()>& aIsStopped,
               std::ostream& aOut, std::ostream& aErrors);

} // namespace krtool
