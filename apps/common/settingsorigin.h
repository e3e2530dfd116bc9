#pragma once
// Whose settings a file holds. What of them can be set is left to the parameter array.

#include "krgenicam/krgenparameterarray.h"
#include "krgenicam/krgensettings.h"

#include <string>

namespace krapps {

/// A sentence that names both models where a file's settings are those of another model than the device; empty for the
/// same one, and where the file does not say.
std::string DescribeOtherModel(const KrGenSettings& aSettings, const KrGenParameterArray& aArray);

} // namespace krapps
