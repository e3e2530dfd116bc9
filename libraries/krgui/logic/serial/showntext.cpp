#include "logic/serial/showntext.h"

#include <algorithm>
#include <array>

namespace krgui {

namespace {

constexpr char16_t kReplacement = u'\uFFFD';
constexpr char16_t kMiddleDot = u'\u00B7';
constexpr char16_t kDelete = 0x7F;
constexpr char16_t kLastControl = 0x9F;
constexpr char16_t kSoftHyphen = u'\u00AD';

struct UnitRange {
  char16_t first;
  char16_t last;
};

/// Without a shape of their own, or with a meaning for what stands around them.
constexpr std::array kUnshownRanges = {
    UnitRange{u'\u200B', u'\u200F'}, // zero widths, marks of direction
    UnitRange{u'\u2028', u'\u202E'}, // separators, embeddings
    UnitRange{u'\u2060', u'\u206F'}, // joiners, isolates
    UnitRange{0xFDD0, 0xFDEF},       // no characters
    UnitRange{u'\uFEFF', u'\uFEFF'}, // byte order mark
    UnitRange{0xFFF9, 0xFFFF},       // annotations, objects, no characters
};

bool IsHighSurrogate(char16_t aUnit) {
  return aUnit >= 0xD800 && aUnit <= 0xDBFF;
}

bool IsLowSurrogate(char16_t aUnit) {
  return aUnit >= 0xDC00 && aUnit <= 0xDFFF;
}

char16_t ShowUnit(char16_t aUnit) {
  if (aUnit == u'\n' || aUnit == u'\t')
    return aUnit;
  if (aUnit < u' ' || (aUnit >= kDelete && aUnit <= kLastControl))
    return kMiddleDot;
  if (aUnit == kSoftHyphen)
    return u'-';
  const bool isUnshown = std::any_of(kUnshownRanges.begin(), kUnshownRanges.end(), [aUnit](const UnitRange& aRange) {
    return aUnit >= aRange.first && aUnit <= aRange.last;
  });
  return isUnshown || IsHighSurrogate(aUnit) || IsLowSurrogate(aUnit) ? kReplacement : aUnit;
}

} // namespace

std::u16string MakeShownText(std::u16string_view aText) {
  std::u16string shown;
  shown.reserve(aText.size());
  for (std::size_t index = 0; index < aText.size(); ++index) {
    if (aText[index] == u'\r')
      continue;
    if (IsHighSurrogate(aText[index]) && index + 1 < aText.size() && IsLowSurrogate(aText[index + 1])) {
      shown += aText.substr(index, 2);
      ++index;
    } else {
      shown += ShowUnit(aText[index]);
    }
  }
  return shown;
}

std::size_t CountShownUnits(std::u16string_view aText) {
  return aText.size() - static_cast<std::size_t>(std::count(aText.begin(), aText.end(), u'\r'));
}

std::size_t FindUnit(std::u16string_view aText, std::size_t aShown) {
  std::size_t shown = 0;
  for (std::size_t index = 0; index < aText.size(); ++index) {
    if (aText[index] == u'\r')
      continue;
    if (shown == aShown)
      return index;
    ++shown;
  }
  return aText.size();
}

std::u16string MakeForeignText(std::u16string_view aText) {
  std::u16string text(aText);
  std::erase_if(text, [](char16_t aUnit) { return aUnit == u'\r' || aUnit == u'\0'; });
  return text;
}

} // namespace krgui
