#pragma once
// What code may not do with texts and programs, because it cannot be done safely: which functions are called nowhere,
// or in one place alone, and how texts that may come from a device reach labels, message boxes and tooltips. Only
// questions about one source text; which files there are is left to the tree check.

#include <string>
#include <string_view>
#include <vector>

namespace archcheck {

/// A use that is not allowed.
struct BrokenCall {
  int line;         ///< Counted from 1.
  std::string rule; ///< What is wrong, and what to do instead, as a sentence.
  friend bool operator==(const BrokenCall&, const BrokenCall&) = default;
};

/// The uses in a file, by its path from the project's root, in the order of their lines. Comments and literals are
/// none.
std::vector<BrokenCall> FindBrokenCalls(std::string_view aFile, std::string_view aSource);

} // namespace archcheck
