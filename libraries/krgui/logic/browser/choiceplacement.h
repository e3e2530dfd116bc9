#pragma once
// How much room the drop-down list of the combo box editor is offered: as wide as its items need, as high as they may,
// and no larger than what can be seen. Whether it opens below or above is left to logic/frame/dropdownplacement.h.

#include "logic/pixelrect.h"

namespace krgui {

struct ChoicePlacementRequest {
  PixelRect comboBox; ///< On the screen, as all rectangles here.
  PixelRect desktop;  ///< All that can be seen.
  int itemCount = 0;
  int itemHeight = 0;
  int widestItem = 0; ///< With its margins, without a scroll bar.
  int scrollBarWidth = 0;
  bool isRightToLeft = false;
};

/// The rectangle that the list is offered; its top is the combo box's.
PixelRect OfferChoiceList(const ChoicePlacementRequest& aRequest);

} // namespace krgui
