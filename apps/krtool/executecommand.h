#pragma once
// The command "execute": has a device carry out one of its commands, and waits for the end.

#include "commandline.h"
#include "krgenicam/krgenparameterarray.h"
#include "krsystem/krsystem.h"
#include "stopsignal.h"

#include <cstdint>
#include <ostream>
#include <string>

namespace krtool {

/// How long the end is awaited unless the command line says otherwise.
inline constexpr std::uint32_t kDefaultExecuteTimeoutMs = 10000;

/// Writes nothing but failures. Gives the program's exit code, which for a signal that ended the waiting is 128 and its
/// number; the device goes on with the command then, as it does when the time limit passed.
int RunExecute(KrSystem& aSystem, const CommandLine& aCommandLine, std::ostream& aOut, std::ostream& aErrors);

/// The same with an array; a result instead of an exit code, Aborted when the stop was raised.
KrResult ExecuteCommand(const KrGenParameterArray& aArray, const std::string& aName, const krapps::StopSignal& aStop,
                        std::uint32_t aTimeoutMs);

} // namespace krtool
