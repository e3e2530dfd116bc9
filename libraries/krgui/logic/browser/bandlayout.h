#pragma once
// Where controls that stand beside each other in a band lie when there is more room than they want, and when there is
// less. What a control wants is told by whoever has the toolkit.

#include "logic/browser/rowgeometry.h"

#include <span>
#include <vector>

namespace krgui {

/// A control of a band, in device-independent pixels.
struct BandItem {
  int width = 0;          ///< As it wants to be.
  int leastWidth = 0;     ///< As it still is of use.
  int height = 0;         ///< It lies in the middle of the band; what is higher than the band is cut to it.
  int gap = 0;            ///< To the control before it.
  bool takesRest = false; ///< Gets the room that nobody wants; the first of several.
  bool isWhole = false;   ///< Stands there as it wants to be or, when it would have to give way, not at all.
};

/// The controls from left to right, inside the band and apart from each other. Where there is too little room, those
/// that can give way do so, the last one first, and what one that went altogether leaves is the others' again; where
/// that is not enough, the last ones are cut, down to nothing.
std::vector<GridRect> LayOutBand(const GridRect& aBand, std::span<const BandItem> aItems);

} // namespace krgui
