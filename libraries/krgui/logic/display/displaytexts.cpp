#include "logic/display/displaytexts.h"

#include <array>
#include <charconv>
#include <cmath>
#include <optional>
#include <string>
#include <system_error>

namespace krgui {

namespace {

constexpr int kSignificantDigits = 6;
/// From here on a number of floating point has no digits after the point.
constexpr double kLastWhole = 9007199254740992.0;

std::string ToHex(std::uint32_t aNumber) {
  constexpr int kDigits = 8;
  std::string text = "0x";
  for (int digit = kDigits - 1; digit >= 0; --digit)
    text += "0123456789ABCDEF"[(aNumber >> (4 * digit)) & 0xF];
  return text;
}

std::string ToText(double aNumber) {
  std::array<char, 32> text;
  char* const end = text.data() + text.size();
  // Whole numbers have all their digits: the general format would write a million as 1e+06.
  const bool isWhole = std::abs(aNumber) <= kLastWhole && std::trunc(aNumber) == aNumber;
  const std::to_chars_result written =
      isWhole ? std::to_chars(text.data(), end, static_cast<std::int64_t>(aNumber))
              : std::to_chars(text.data(), end, aNumber, std::chars_format::general, kSignificantDigits);
  return {text.data(), written.ec == std::errc() ? written.ptr : text.data()};
}

} // namespace

KrString MakeFormatText(KrPixelType aType) {
  const std::optional<KrPixelTypeInfo> info = KrFindPixelType(aType);
  const std::string format = info ? std::string(info->name) + " (" + ToHex(aType) + ")" : ToHex(aType);
  return "Cannot show pixel format " + format + ".\nSet the camera to a mono, Bayer, RGB or YUV format.";
}

KrString MakePixelText(std::uint32_t aX, std::uint32_t aY, const KrPixelValue& aValue) {
  std::string text = "x " + std::to_string(aX) + "  y " + std::to_string(aY);
  const bool isGrey = aValue.sampleCount == 1 && aValue.components[0] == 'Y';
  for (std::size_t i = 0; i < static_cast<std::size_t>(aValue.sampleCount); ++i) {
    text += i == 0 ? "  " : " ";
    text += isGrey ? "value" : std::string(1, aValue.components[i]);
    text += " " + ToText(aValue.samples[i]);
  }
  return text;
}

std::string CutText(std::string_view aText, std::size_t aMostLines, std::size_t aMostCharacters) {
  constexpr unsigned kContinuationMask = 0xC0;
  constexpr unsigned kContinuation = 0x80;
  std::string cut;
  std::size_t characters = 0;
  for (std::size_t i = 0, lines = 1; i < aText.size(); ++i) {
    const char byte = aText[i];
    if (byte == '\n' || byte == '\r') {
      if (++lines > aMostLines)
        break;
      i += byte == '\r' && i + 1 < aText.size() && aText[i + 1] == '\n' ? 1 : 0;
      cut += '\n';
      characters = 0;
      continue;
    }
    const bool isContinued = (static_cast<unsigned char>(byte) & kContinuationMask) == kContinuation;
    characters += isContinued ? 0 : 1;
    if (characters <= aMostCharacters)
      cut += byte;
  }
  return cut;
}

} // namespace krgui
