#pragma once
// How wide the panels beside a picture are, and how high those below it, in a page that becomes smaller and larger: the
// picture keeps its part of it. How panels are made so large is left to their owner.

#include <optional>

namespace krviewer {

/// Of one side. Widths, or heights, are in device-independent pixels. Thread: one.
class SideWidth {
public:
  /// The user has made the panels so wide, in a page that stays as it is.
  void NoteMove(int aSide);
  /// The window has made so much of what Fit gave.
  void NoteGiven(int aSide) { mLast = mGiven = aSide; }
  /// They have it from a run before, in which they may have given way; they are of use from aUseful on.
  void NoteRestored(int aSide, int aUseful);
  /// What the panels are to have in a page of another width than before, when they have aSide now, which the window may
  /// have squeezed; nothing where that is theirs already. Those that gave way get back what they had, unless the user
  /// has moved the boundary meanwhile.
  std::optional<int> Fit(int aSide, int aPageBefore, int aPage);

private:
  int mLast = 0;   ///< What they had before the page changed; 0 where that is not known.
  int mWanted = 0; ///< What they had before they gave way; 0 when they have it.
  int mGiven = 0;
};

} // namespace krviewer
