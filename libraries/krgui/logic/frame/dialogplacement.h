#pragma once
// Where a dialog that belongs to a window comes up: over the middle of it, whole on the screen. Which screen that is,
// and how thick the dialog's frame will be, is told by whoever has the toolkit.

#include "logic/frame/dialoglayout.h"
#include "logic/pixelrect.h"

namespace krgui {

/// The rectangle of a dialog of a size, frame included, centred on an owner and moved onto the screen. A dialog larger
/// than the screen begins at its left and top, where its caption is.
PixelRect PlaceDialog(const PixelSize& aSize, const PixelRect& aOwner, const PixelRect& aScreen);

} // namespace krgui
