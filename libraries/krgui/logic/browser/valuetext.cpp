#include "logic/browser/valuetext.h"

#include "krbase/utf8cut.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <limits>
#include <string>
#include <string_view>

namespace krgui {

namespace {

constexpr std::string_view kHexDigits = "0123456789ABCDEF";

std::uint8_t GetByte(std::int64_t aValue, int aIndex) {
  return static_cast<std::uint8_t>(static_cast<std::uint64_t>(aValue) >> (8 * aIndex));
}

// Bounds that say no more than the size of the number behind a feature.
struct UnboundRange {
  std::int64_t min;
  std::int64_t max;
  const char* words;
};

constexpr std::array kUnboundRanges = {
    UnboundRange{std::numeric_limits<std::int64_t>::min(), std::numeric_limits<std::int64_t>::max(), "signed 64"},
    UnboundRange{std::numeric_limits<std::int32_t>::min(), std::numeric_limits<std::int32_t>::max(), "signed 32"},
    UnboundRange{0, std::numeric_limits<std::uint32_t>::max(), "unsigned 32"},
    UnboundRange{std::numeric_limits<std::int16_t>::min(), std::numeric_limits<std::int16_t>::max(), "signed 16"},
    UnboundRange{0, std::numeric_limits<std::uint16_t>::max(), "unsigned 16"},
};

} // namespace

KrString KeepText(KrString aText) {
  if (!IsTooLong(aText))
    return aText;
  const std::string& text = aText.ToUtf8();
  return std::string(krbase::CutUtf8(text, kMostKeptBytes)) + "… (" + std::to_string(text.size()) + " bytes)";
}

KrString FormatMACAddress(std::int64_t aValue) {
  std::string text;
  for (int index = 5; index >= 0; --index) {
    const std::uint8_t byte = GetByte(aValue, index);
    text += kHexDigits[byte >> 4];
    text += kHexDigits[byte & 0xF];
    if (index > 0)
      text += ':';
  }
  return text;
}

KrString FormatIPAddress(std::int64_t aValue) {
  std::string text;
  for (int index = 3; index >= 0; --index)
    text += std::to_string(GetByte(aValue, index)) + (index > 0 ? "." : "");
  return text;
}

KrString FormatHexDigits(std::uint64_t aValue) {
  std::array<char, 16> digits{};
  std::size_t first = digits.size();
  do {
    digits[--first] = kHexDigits[aValue & 0xF];
    aValue >>= 4;
  } while (aValue != 0);
  return std::string_view(digits.data() + first, digits.size() - first);
}

KrString FormatInteger(std::int64_t aValue, bool aIsHexadecimal) {
  return aIsHexadecimal ? "0x" + FormatHexDigits(static_cast<std::uint64_t>(aValue)) : std::to_string(aValue);
}

KrString FormatFloat(double aValue) {
  // Six digits, which is what "%g" means; the standard defines this call as printf in the C locale.
  std::array<char, 32> text{};
  const std::to_chars_result end =
      std::to_chars(text.data(), text.data() + text.size(), aValue, std::chars_format::general, 6);
  return std::string_view(text.data(), static_cast<std::size_t>(end.ptr - text.data()));
}

KrString JoinUnit(const KrString& aNumber, const KrString& aUnit) {
  return aNumber + " " + aUnit;
}

KrString FormatBounds(std::int64_t aMin, std::int64_t aMax, bool aIsHexadecimal) {
  const auto unbound = std::find_if(kUnboundRanges.begin(), kUnboundRanges.end(), [&](const UnboundRange& aRange) {
    return aRange.min == aMin && aRange.max == aMax;
  });
  if (unbound != kUnboundRanges.end())
    return std::string("Unbound ") + unbound->words + " bits integer\n";
  const auto format = [&](std::int64_t aBound) {
    return aIsHexadecimal ? FormatHexDigits(static_cast<std::uint64_t>(aBound)) : FormatInteger(aBound, false);
  };
  return "Min: <b>" + format(aMin) + "</b> Max: <b>" + format(aMax) + "</b>\n";
}

} // namespace krgui
