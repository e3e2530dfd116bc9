#pragma once
// Characters that are not seen and change how those around them are: a name that holds one could turn around, break or
// hide what is written beside it.

#include <algorithm>
#include <array>

namespace krsystem {

/// Whether a character of Unicode is such a mark: of direction, of no width, or an end of line or paragraph. Control
/// characters are none. Any thread.
constexpr bool IsFormatMark(char32_t aCharacter) {
  struct Range {
    char32_t from;
    char32_t to;
  };
  constexpr std::array kRanges = {Range{0x061C, 0x061C}, Range{0x200B, 0x200F}, Range{0x2028, 0x202E},
                                  Range{0x2066, 0x2069}, Range{0xFEFF, 0xFEFF}};
  return std::any_of(kRanges.begin(), kRanges.end(), [aCharacter](const Range& aRange) {
    return aCharacter >= aRange.from && aCharacter <= aRange.to;
  });
}

} // namespace krsystem
