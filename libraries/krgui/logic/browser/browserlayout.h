#pragma once
// Where the browser window's controls lie at a size, with and without the search row, and how the boundary between grid
// and description moves.

#include "logic/browser/rowgeometry.h"

namespace krgui {

/// What the layout starts from, in device-independent pixels.
struct BrowserMetrics {
  int width = 0;
  int height = 0;
  int margin = 0;
  int rowHeight = 0; ///< Of the row of buttons, and of the search row.
  bool hasSearchRow = false;
  int descriptionHeight = 0; ///< As the user wants it.
};

struct BrowserRows {
  GridRect tools;
  GridRect search; ///< Empty without a search row.
  GridRect grid;
  GridRect description;
};

inline constexpr int kLeastGridHeight = 60;
inline constexpr int kLeastDescriptionHeight = 40;

/// How far beside the boundary a press still takes it.
inline constexpr int kSplitterReach = 3;

/// The four bands from top to bottom; the description gives way before the grid does.
BrowserRows LayOutBrowser(const BrowserMetrics& aMetrics);
/// Whether a press takes the boundary: within reach above or below the grid's bottom edge.
bool IsInSplitterBand(int aY, const BrowserRows& aRows);
/// The description's height while the pointer drags the boundary.
int DragSplitter(int aY, const BrowserMetrics& aMetrics);

} // namespace krgui
