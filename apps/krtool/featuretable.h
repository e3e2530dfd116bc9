#pragma once
// All features of a parameter array as lines of fields. How the array came about is left to the commands.

#include "krgenicam/krgenparameterarray.h"

#include <ostream>
#include <string>

namespace krtool {

/// Which features are to be in a table.
struct FeatureFilter {
  std::string category = {}; ///< Only what this category holds, and all below it: its name, or names from any category
                             ///< above it on as a path has them; empty for everything.
  KrGenVisibility visibility = KrGenVisibility::Invisible; ///< Of features, and of the categories that hold them.
};

/// Writes a line of headings and one line for each place in the tree of categories at which a feature stands: a
/// category's own features, then the categories in it, in the order of the description. Fields are parted by tabs.
/// NotFound, with the names there are, for a category that there is not; nothing is written then.
KrResult WriteFeatureTable(KrGenParameterArray& aArray, const FeatureFilter& aFilter, std::ostream& aOut);

} // namespace krtool
