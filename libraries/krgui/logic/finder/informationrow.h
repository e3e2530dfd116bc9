#pragma once
// A row of the finder's information lists: caption, value and what the value's colour says of it. Painting is left to
// the list.

#include "krbase/krstring.h"

#include <cstdint>

namespace krgui {

/// A colour as 0x00BBGGRR, or -1 for the list's own.
using RowColour = std::int32_t;

inline constexpr RowColour kNoRowColour = -1;
inline constexpr RowColour kGoodRowColour = 0xFFFFFF;       ///< White: the value is good.
inline constexpr RowColour kSuspiciousRowColour = 0x00FFFF; ///< Yellow: the value is suspicious.
inline constexpr RowColour kWrongRowColour = 0x0000D0;      ///< Red: the value is wrong.
inline constexpr RowColour kGreenRowColour = 0x008000;      ///< Used by no row; the list paints it as it does red.

struct InfoRow {
  KrString caption;
  KrString value;
  RowColour colour = kNoRowColour;
  friend bool operator==(const InfoRow&, const InfoRow&) = default;
};

/// Whether a value on a background of this colour is written in white.
constexpr bool IsWrittenInWhite(RowColour aColour) {
  return aColour == kWrongRowColour || aColour == kGreenRowColour;
}

} // namespace krgui
