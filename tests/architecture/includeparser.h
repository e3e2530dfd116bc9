#pragma once
// Finds the include directives of a C++ source text. Comments and literals are passed over, conditions are not
// evaluated: an include in a branch that is not compiled here counts as well.

#include <string>
#include <string_view>
#include <vector>

namespace archcheck {

struct Include {
  int line;         ///< Counted from 1.
  std::string path; ///< What stands between the quotes or angle brackets.
  friend bool operator==(const Include&, const Include&) = default;
};

std::vector<Include> ParseIncludes(std::string_view aSource);

/// The text with comments and the contents of literals blanked; line breaks and the names of includes stay where they
/// are.
std::string BlankCommentsAndLiterals(std::string_view aSource);
/// The same with the literals as they are.
std::string BlankComments(std::string_view aSource);

} // namespace archcheck
