#pragma once
// Values of features as the grid shows them, and their bounds as the description pane does. Reading them is left to the
// node.

#include "krbase/krstring.h"

#include <cstddef>
#include <cstdint>

namespace krgui {

/// More bytes of a device's text are not kept of a row: there may be a million rows, each with many megabytes.
inline constexpr std::size_t kMostKeptBytes = 4096;
/// A text of more bytes is not edited in a line.
inline constexpr std::size_t kMostEditedBytes = 65'536;
/// What is said of a row with such a value.
inline constexpr const char* kCutValueText =
    "Only the beginning of the value is shown: it is too long to be edited here.";

inline constexpr const char* kExecutingText = "{Executing}";
inline constexpr const char* kCommandText = "{Command}";
inline constexpr const char* kRegisterText = "{Register}";
inline constexpr const char* kNotImplementedText = "{Not implemented}";
inline constexpr const char* kNotAvailableText = "{Not available}";

/// Whether a text is cut by KeepText.
inline bool IsTooLong(const KrString& aText) {
  return aText.GetLength() > kMostKeptBytes;
}
/// Whether a text has no editor, however it may be written.
inline bool IsTooLongToEdit(const KrString& aText) {
  return aText.GetLength() > kMostEditedBytes;
}
/// A text as a row keeps it: as it is or, where it is too long, its beginning with how many bytes it has.
KrString KeepText(KrString aText);

/// "%02X:…" of the six low bytes, the most significant first.
KrString FormatMACAddress(std::int64_t aValue);
/// "%i.%i.%i.%i" of the four low bytes, the most significant first.
KrString FormatIPAddress(std::int64_t aValue);
/// Upper-case hexadecimal digits without prefix and padding.
KrString FormatHexDigits(std::uint64_t aValue);
/// Decimal, or "0x" and upper-case hexadecimal digits of the two's complement.
KrString FormatInteger(std::int64_t aValue, bool aIsHexadecimal);
/// "%g", whatever the locale.
KrString FormatFloat(double aValue);
/// A number's text, a blank and the unit, which may be empty.
KrString JoinUnit(const KrString& aNumber, const KrString& aUnit);
/// The line of the description that tells an integer's bounds, with its line end.
KrString FormatBounds(std::int64_t aMin, std::int64_t aMax, bool aIsHexadecimal);

} // namespace krgui
