#pragma once
// The small mark-up of description texts: runs of normal and of bold text.

#include <string_view>
#include <vector>

namespace krgui {

struct MarkupRun {
  std::string_view text;
  bool isBold = false;
  friend bool operator==(const MarkupRun&, const MarkupRun&) = default;
};

/// Parts a text at <b> in normal and at </b> in bold mode; nothing nests, a missing end leaves the rest bold. Runs
/// without text are left out. The runs point into the text.
std::vector<MarkupRun> SplitMarkup(std::string_view aText);

/// Whether what follows the text would be bold by it: a bold run in it has no end.
bool LeavesBold(std::string_view aText);

/// The height of a title: 1.3 times the default height, rounded.
int ScaleTitleHeight(int aDefaultHeight);

} // namespace krgui
