#pragma once
// The texts that a display says of images and pixels, in words for the user and without a locale.

#include "krbase/krstring.h"
#include "krbuffer/krpixeltype.h"
#include "krbuffer/krpixelvalue.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace krgui {

/// What an empty window says of a format that it cannot show.
KrString MakeFormatText(KrPixelType aType);

/// The line about one pixel, such as "x 123  y 45  value 789" or "x 123  y 45  R 12 G 200 B 7".
KrString MakePixelText(std::uint32_t aX, std::uint32_t aY, const KrPixelValue& aValue);

/// The beginning of a UTF-8 text that a place on the screen can show at most: so many lines, each with so many
/// characters. Line ends of every kind become "\n". Takes as long as what is kept, and what is cut from the lines above
/// it.
std::string CutText(std::string_view aText, std::size_t aMostLines, std::size_t aMostCharacters);

} // namespace krgui
