#pragma once
// The command "features": all features of a device, or of a description, as a table.

#include "commandline.h"
#include "krgenicam/krgenparameterarray.h"
#include "krsystem/krsystem.h"

#include <functional>
#include <ostream>
#include <string>

namespace krtool {

/// Writes the table to aOut, and to aErrors how many faults the description has, or each of them. Gives the program's
/// exit code; features that cannot be read are no failure, but a device that does not answer is one.
int RunFeatures(KrSystem& aSystem, const CommandLine& aCommandLine, std::ostream& aOut, std::ostream& aErrors);

/// The same with an array; aDevice is named in messages. aGetLoss gives the first access without an answer.
int ListFeatures(KrGenParameterArray& aArray, const std::string& aDevice, const std::function<KrResult()>& aGetLoss,
                 const CommandLine& aCommandLine, std::ostream& aOut, std::ostream& aErrors);

} // namespace krtool
