#pragma once
// Rows from top to bottom, as layouts that are computed place their controls in them. What is in a row is left to the
// layout.

#include "logic/pixelrect.h"

#include <algorithm>

namespace krgui {

/// A space before each row, all of them alike. Thread: one.
class RowStack {
public:
  RowStack(int aTop, int aSpace) : mY(aTop), mSpace(aSpace) {}

  /// A row of a height; its sides are for the controls in it to say.
  PixelRect Take(int aHeight) {
    Leave(1);
    const int top = mY;
    mY += aHeight;
    return {0, top, 0, mY};
  }
  /// So many spaces more.
  void Leave(int aSpaces) {
    mSpaces += aSpaces;
    mY += aSpaces * mSpace;
  }
  void Skip(int aHeight) { mY += aHeight; }
  int GetY() const { return mY; }
  int CountSpaces() const { return mSpaces; }

private:
  int mY;
  int mSpace;
  int mSpaces = 0;
};

/// So high, in the middle of a row; empty where the right side is left of the left one.
inline PixelRect PlaceInRow(const PixelRect& aRow, int aLeft, int aRight, int aHeight) {
  const int top = aRow.top + (aRow.bottom - aRow.top - aHeight) / 2;
  return {aLeft, top, std::max(aLeft, aRight), top + aHeight};
}

} // namespace krgui
