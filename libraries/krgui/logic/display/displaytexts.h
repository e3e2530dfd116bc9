#pragma once
// The texts that a display says of images and pixels, in words for the user and without a locale.

#include "krbase/krstring.h"
#include "krbuffer/krpixeltype.h"
#include "krbuffer/krpixelvalue.h"

#include <cstdint>

namespace krgui {

/// What an empty window says of a format that it cannot show.
KrString MakeFormatText(KrPixelType aType);

/// The line about one pixel, such as "x 123  y 45  value 789" or "x 123  y 45  R 12 G 200 B 7".
KrString MakePixelText(std::uint32_t aX, std::uint32_t aY, const KrPixelValue& aValue);

} // namespace krgui
