#pragma once
// From a feature's name as a user typed it to the feature, or to the names that may have been meant.

#include "krgenicam/krgenparameterarray.h"

#include <string>
#include <vector>

namespace krtool {

/// The feature, or other node, of a name. NotFound, with names that come near, where there is none.
KrResult FindFeature(const KrGenParameterArray& aArray, const std::string& aName, KrGenParameter*& aFeature);

/// Those of the names that differ from a name by a few letters, by case, or by what stands before or behind it; the
/// nearest first, five at most.
std::vector<std::string> FindNearNames(const std::vector<std::string>& aNames, const std::string& aName);

} // namespace krtool
