#pragma once
// Where a drop-down list opens and how large it is: whole items only, below its combo box, above it where the screen
// ends.

#include "logic/pixelrect.h"

namespace krgui {

struct DropDownRequest {
  PixelRect offered; ///< The rectangle that the list is offered.
  int comboBoxHeight = 0;
  int itemHeight = 0;
  int itemCount = 0;
  PixelRect desktop; ///< All that can be seen.
};

struct DropDownPlacement {
  PixelRect rect;
  bool hasScrollBar = false; ///< Inside of the rectangle: it narrows the items.
};

DropDownPlacement PlaceDropDown(const DropDownRequest& aRequest);

} // namespace krgui
