#pragma once
// What the diagnosis found, as text and as JSON.

#include "krsystem/krfinding.h"

#include <string>
#include <vector>

namespace krtool {

/// For each finding a line with its text, behind its subject where it does not name that, and, indented below it, what
/// to do; a line that says so where there is none.
std::string FormatFindings(const std::vector<KrFinding>& aFindings);
/// One object {"findings":[{"kind":"…","subject":"…","text":"…","remedy":"…"}…]} and a line break.
std::string FormatFindingsJson(const std::vector<KrFinding>& aFindings);

} // namespace krtool
