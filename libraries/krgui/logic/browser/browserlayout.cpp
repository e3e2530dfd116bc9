#include "logic/browser/browserlayout.h"

#include <algorithm>
#include <cstdlib>

namespace krgui {

namespace {

/// Hands out bands from top to bottom, none of them beyond the window's inside.
class BandStack {
public:
  explicit BandStack(const BrowserMetrics& aMetrics)
      : mMargin(aMetrics.margin), mLeft(std::min(aMetrics.margin, std::max(0, aMetrics.width))),
        mRight(std::max(mLeft, aMetrics.width - aMetrics.margin)), mBottom(std::max(0, aMetrics.height - mMargin)),
        mTop(std::min(mMargin, mBottom)) {}

  GridRect Take(int aHeight) {
    const int bottom = std::min(mTop + std::max(0, aHeight), mBottom);
    const GridRect band = {mLeft, mTop, mRight, bottom};
    mTop = std::min(bottom + mMargin, mBottom);
    return band;
  }
  /// What is left for this many bands of any height together, without the gaps between them.
  int GetRest(int aBands) const { return std::max(0, mBottom - mTop - (aBands - 1) * mMargin); }
  int GetBottom() const { return mBottom; }

private:
  const int mMargin;
  const int mLeft;
  const int mRight;
  const int mBottom;
  int mTop;
};

/// Takes the bands above the grid, the search row's with it.
GridRect TakeSearchRow(BandStack& aStack, const BrowserMetrics& aMetrics) {
  return aMetrics.hasSearchRow ? aStack.Take(aMetrics.rowHeight) : GridRect();
}

/// The description's height that is nearest to the wanted one. The grid has its least height first.
int LimitDescription(int aWanted, int aRoom) {
  const int most = std::max(0, aRoom - kLeastGridHeight);
  return std::clamp(aWanted, std::min(kLeastDescriptionHeight, most), most);
}

} // namespace

BrowserRows LayOutBrowser(const BrowserMetrics& aMetrics) {
  BandStack stack(aMetrics);
  BrowserRows rows;
  rows.tools = stack.Take(aMetrics.rowHeight);
  rows.search = TakeSearchRow(stack, aMetrics);
  const int room = stack.GetRest(2);
  const int descriptionHeight = LimitDescription(aMetrics.descriptionHeight, room);
  rows.grid = stack.Take(room - descriptionHeight);
  rows.description = stack.Take(descriptionHeight);
  return rows;
}

bool IsInSplitterBand(int aY, const BrowserRows& aRows) {
  return std::abs(aY - aRows.grid.bottom) <= kSplitterReach;
}

int DragSplitter(int aY, const BrowserMetrics& aMetrics) {
  BandStack stack(aMetrics);
  stack.Take(aMetrics.rowHeight);
  TakeSearchRow(stack, aMetrics);
  return LimitDescription(stack.GetBottom() - aMetrics.margin - aY, stack.GetRest(2));
}

} // namespace krgui
