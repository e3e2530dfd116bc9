#pragma once
// What the error indicator says: a list of the features that are in error.

#include "krbase/krstring.h"

#include <memory>
#include <vector>

namespace krgui {

class TreeItemData;

/// Features whose errors are shown, with a prefix for each, which may be empty.
struct ErrorSource {
  const std::vector<std::unique_ptr<TreeItemData>>* features;
  KrString prefix;
};

/// Empty without errors; else one line for each feature in error, parted by "\r\n", at most sixteen, then "...".
KrString FormatErrors(const ErrorSource& aSource);

} // namespace krgui
