#pragma once
// The commands "save" and "load": a device's settings in a file, and back.

#include "commandline.h"
#include "krgenicam/krgenparameterarray.h"
#include "krsystem/krsystem.h"

#include <functional>
#include <ostream>

namespace krtool {

/// How many problems are told of, a line each; of the others how many they are.
inline constexpr std::size_t kMostProblems = 20;

/// Takes the settings and writes the file, also where the device says that some cannot be read: those are told of on
/// aErrors, and the exit code is 1. Where an access had no answer, the command was stopped or there is no setting at
/// all, nothing is written, a file that is there stays as it is, and the exit code is not 0 either.
int RunSave(KrSystem& aSystem, const CommandLine& aCommandLine, std::ostream& aOut, std::ostream& aErrors);
/// Sets what the file says and writes how many settings it has and how many problems there were. What is not as in the
/// file afterwards is told of on aErrors, and the exit code is 1. A file of another model is pointed out, no more.
int RunLoad(KrSystem& aSystem, const CommandLine& aCommandLine, std::ostream& aOut, std::ostream& aErrors);

/// The same with an array. aGetLoss gives the first access without an answer.
int SaveSettings(KrGenParameterArray& aArray, const std::function<KrResult()>& aGetLoss,
                 const CommandLine& aCommandLine, std::ostream& aOut, std::ostream& aErrors);
int LoadSettings(KrGenParameterArray& aArray, const KrGenSettings& aSettings, std::ostream& aOut,
                 std::ostream& aErrors);

} // namespace krtool
