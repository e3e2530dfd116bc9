#pragma once
// The commands "get" and "set": values of single features.

#include "commandline.h"
#include "krgenicam/krgenparameterarray.h"
#include "krsystem/krsystem.h"

#include <ostream>
#include <string>
#include <vector>

namespace krtool {

/// Writes the value of each feature to aOut: alone, or behind its name and a tab where there are several. One that
/// cannot be read is told of on aErrors, and the others are still read. Gives the program's exit code.
int RunGet(KrSystem& aSystem, const CommandLine& aCommandLine, std::ostream& aOut, std::ostream& aErrors);
/// Sets each feature and writes what it is then, in the same form; what can only be written is not. Nothing is set
/// where one of the names is unknown or that of a command; the first that cannot be set ends it.
int RunSet(KrSystem& aSystem, const CommandLine& aCommandLine, std::ostream& aOut, std::ostream& aErrors);

/// The same with an array; aDevice is named in messages. aPairs holds names and values in turn.
int GetValues(const KrGenParameterArray& aArray, const std::string& aDevice, const std::vector<std::string>& aNames,
              std::ostream& aOut, std::ostream& aErrors);
int SetValues(const KrGenParameterArray& aArray, const std::string& aDevice, const std::vector<std::string>& aPairs,
              std::ostream& aOut, std::ostream& aErrors);

} // namespace krtool
