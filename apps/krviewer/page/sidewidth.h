#pragma once
// How wide the panels beside a picture are in a page that becomes narrower and wider: the picture keeps its part of it.
// How panels are made so wide is left to their owner.

#include <optional>

namespace krviewer {

/// Of one side. Widths are in device-independent pixels. Thread: one.
class SideWidth {
public:
  /// What the panels are to have in a page of another width than before, when they have aSide now; nothing where that
  /// is theirs already. Those that gave way get back what they had, unless the user has moved the boundary meanwhile.
  std::optional<int> Fit(int aSide, int aPageBefore, int aPage);

private:
  int mWanted = 0; ///< What they had before they gave way; 0 when they have it.
  int mGiven = 0;
};

} // namespace krviewer
