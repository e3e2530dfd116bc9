#pragma once
// What the error indicator says: whether any feature is in error, and a list of those that are.

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

bool HasErrors(const ErrorSource& aSource);
/// One line for each feature in error, parted by "\r\n", at most sixteen, then "...".
KrString FormatErrors(const ErrorSource& aSource);

} // namespace krgui
