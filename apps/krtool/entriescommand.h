#pragma once
// The command "entries": what an enumeration can be set to.

#include "commandline.h"
#include "krgenicam/krgenparameterarray.h"
#include "krsystem/krsystem.h"

#include <functional>
#include <ostream>
#include <string>

namespace krtool {

/// Writes a line of headings and one line for each entry, whether or not it can be chosen, in the order of the
/// description. Gives the program's exit code.
int RunEntries(KrSystem& aSystem, const CommandLine& aCommandLine, std::ostream& aOut, std::ostream& aErrors);

/// The same with an array; aDevice is named in messages. aGetLoss gives the first access without an answer.
int ListEntries(const KrGenParameterArray& aArray, const std::string& aDevice,
                const std::function<KrResult()>& aGetLoss, const std::string& aName, std::ostream& aOut,
                std::ostream& aErrors);

} // namespace krtool
