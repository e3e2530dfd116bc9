#pragma once
// The command "save-frame": one whole frame of one device as a file.

#include "commandline.h"
#include "krdevice/krdevice.h"
#include "krsystem/krsystem.h"

#include <ostream>

namespace krtool {

/// Takes the first frame that comes whole and writes it; frames that do not are named on aErrors. What was saved goes
/// to aOut as one line of "key=value". Nothing is asked of a device before it is clear that the file can be made. Gives
/// the program's exit code; Ctrl-C before a frame came is a failure.
int RunSaveFrame(KrSystem& aSystem, const CommandLine& aCommandLine, std::ostream& aOut, std::ostream& aErrors);

/// The same with a device that is open.
int SaveFrameOf(KrDevice& aDevice, const CommandLine& aCommandLine, std::ostream& aOut, std::ostream& aErrors);

} // namespace krtool
