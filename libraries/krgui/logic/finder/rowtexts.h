#pragma once
// Numbers as the finder's rows write them, and those that several kinds know. Captions and colours are each kind's own.

#include "krbase/krstring.h"

#include <cstdint>

namespace krgui {

/// The speed of a USB port or device that is good for a camera.
inline constexpr std::int32_t kSuperSpeed = 4;

/// "0x" and upper-case digits, filled with zeros on the left; a number that needs more digits has them.
KrString WriteHex(std::uint32_t aNumber, int aFewestDigits);
/// "major.minor" of a number with the major version in the upper, the minor in the lower 16 bits.
KrString WriteVersion(std::uint32_t aVersion);
KrString WriteDecimal(std::int64_t aNumber);
/// "True" or "False".
KrString WriteBool(bool aValue);

} // namespace krgui
