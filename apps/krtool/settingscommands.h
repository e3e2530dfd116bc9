#pragma once
// The commands "save" and "load": a device's settings in a file, and back.

#include "commandline.h"
#include "krsystem/krsystem.h"

#include <ostream>

namespace krtool {

/// Takes the settings and writes the file, also where some could not be read: those are told of on aErrors, a line
/// each, and the exit code is 1. The file is not made when the device was lost or the command was stopped meanwhile.
int RunSave(KrSystem& aSystem, const CommandLine& aCommandLine, std::ostream& aOut, std::ostream& aErrors);
/// Sets what the file says and writes how much that was. What is not as in the file afterwards is told of on aErrors, a
/// line each, and the exit code is 1.
int RunLoad(KrSystem& aSystem, const CommandLine& aCommandLine, std::ostream& aOut, std::ostream& aErrors);

} // namespace krtool
