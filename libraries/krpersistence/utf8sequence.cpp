#include "utf8sequence.h"

#include <array>

namespace krpersistence {

namespace {

struct LengthRow {
  unsigned char leadMask;
  unsigned char lead;
  char32_t leastPoint; // A smaller code point has a shorter sequence, and this one is malformed.
};

// The row of a sequence of n bytes is n - 1.
constexpr std::array kLengths = {LengthRow{0x80, 0x00, 0}, LengthRow{0xE0, 0xC0, 0x80}, LengthRow{0xF0, 0xE0, 0x800},
                                 LengthRow{0xF8, 0xF0, 0x10000}};

bool IsContinuation(char aByte) {
  return (static_cast<unsigned char>(aByte) & 0xC0U) == 0x80U;
}

bool IsScalarValue(char32_t aPoint) {
  return aPoint < 0xD800 || (aPoint > 0xDFFF && aPoint <= 0x10FFFF);
}

} // namespace

Utf8Sequence ReadUtf8(std::string_view aText) {
  const auto lead = static_cast<unsigned char>(aText.front());
  std::size_t length = 1;
  while (length <= kLengths.size() && (lead & kLengths[length - 1].leadMask) != kLengths[length - 1].lead)
    ++length;
  if (length > kLengths.size() || length > aText.size())
    return {};
  const LengthRow& row = kLengths[length - 1];

  char32_t point = lead & static_cast<unsigned char>(~row.leadMask);
  for (std::size_t index = 1; index < length; ++index) {
    if (!IsContinuation(aText[index]))
      return {};
    point = (point << 6) | (static_cast<unsigned char>(aText[index]) & 0x3FU);
  }
  return point >= row.leastPoint && IsScalarValue(point) ? Utf8Sequence{point, length} : Utf8Sequence{};
}

bool IsXmlCharacter(char32_t aPoint) {
  if (aPoint < 0x20)
    return aPoint == '\t' || aPoint == '\n' || aPoint == '\r';
  return IsScalarValue(aPoint) && aPoint != 0xFFFE && aPoint != 0xFFFF;
}

void AppendUtf8(std::string& aText, char32_t aPoint) {
  std::size_t length = 1;
  while (length < kLengths.size() && aPoint >= kLengths[length].leastPoint)
    ++length;
  for (std::size_t index = 0; index < length; ++index) {
    const char32_t bits = aPoint >> (6 * (length - 1 - index));
    const LengthRow& row = kLengths[length - 1];
    aText += static_cast<char>(index == 0 ? (row.lead | bits) : (0x80U | (bits & 0x3FU)));
  }
}

} // namespace krpersistence
