#pragma once
// How tests show the rectangles of the property grid.

#include "logic/browser/rowgeometry.h"

#include <ostream>

namespace krgui {

inline void PrintTo(const GridRect& aRect, std::ostream* aStream) {
  *aStream << "(" << aRect.left << ", " << aRect.top << ", " << aRect.right << ", " << aRect.bottom << ")";
}

} // namespace krgui
