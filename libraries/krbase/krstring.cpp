#include "krbase/krstring.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <utility>

namespace {

constexpr char32_t kReplacement = 0xFFFD;
constexpr char32_t kFirstSupplementary = 0x10000;

/// A code point and the number of code units that it was read from.
struct Decoded {
  char32_t point;
  std::size_t length;
};

/// The well-formed sequences of two to four bytes (Unicode 15.0, table 3-7). The range of the second byte is what keeps
/// out overlong forms, surrogates and values beyond U+10FFFF; every later byte is 80 to BF.
struct LeadRow {
  std::uint8_t firstLead;
  std::uint8_t lastLead;
  std::size_t length;
  std::uint8_t leastSecond;
  std::uint8_t mostSecond;
};

constexpr std::array kLeadRows = {
    LeadRow{0xC2, 0xDF, 2, 0x80, 0xBF}, LeadRow{0xE0, 0xE0, 3, 0xA0, 0xBF}, LeadRow{0xE1, 0xEC, 3, 0x80, 0xBF},
    LeadRow{0xED, 0xED, 3, 0x80, 0x9F}, LeadRow{0xEE, 0xEF, 3, 0x80, 0xBF}, LeadRow{0xF0, 0xF0, 4, 0x90, 0xBF},
    LeadRow{0xF1, 0xF3, 4, 0x80, 0xBF}, LeadRow{0xF4, 0xF4, 4, 0x80, 0x8F},
};

/// Reads the first code point of a text that is not empty. A malformed sequence ends before the first byte that cannot
/// continue it (a maximal subpart, Unicode 15.0, D93b), so that no good character after it is swallowed.
Decoded DecodeUtf8(std::string_view aText) {
  const auto lead = static_cast<std::uint8_t>(aText.front());
  if (lead < 0x80)
    return {lead, 1};
  const auto row = std::find_if(kLeadRows.begin(), kLeadRows.end(), [lead](const LeadRow& aRow) {
    return lead >= aRow.firstLead && lead <= aRow.lastLead;
  });
  if (row == kLeadRows.end())
    return {kReplacement, 1};

  // A lead byte of a sequence of n bytes carries 7 - n bits.
  char32_t point = lead & ((1u << (7 - row->length)) - 1);
  for (std::size_t index = 1; index < row->length; ++index) {
    const std::uint8_t least = index == 1 ? row->leastSecond : 0x80;
    const std::uint8_t most = index == 1 ? row->mostSecond : 0xBF;
    const auto byte = index < aText.size() ? static_cast<std::uint8_t>(aText[index]) : std::uint8_t{0};
    if (byte < least || byte > most)
      return {kReplacement, index};
    point = (point << 6) | (byte & 0x3Fu);
  }
  return {point, row->length};
}

bool IsHighSurrogate(char32_t aUnit) {
  return aUnit >= 0xD800 && aUnit <= 0xDBFF;
}
bool IsLowSurrogate(char32_t aUnit) {
  return aUnit >= 0xDC00 && aUnit <= 0xDFFF;
}

/// Reads the first code point of a text that is not empty.
Decoded DecodeUtf16(std::u16string_view aText) {
  const char32_t first = aText.front();
  if (!IsHighSurrogate(first) && !IsLowSurrogate(first))
    return {first, 1};
  if (IsHighSurrogate(first) && aText.size() > 1 && IsLowSurrogate(aText[1]))
    return {kFirstSupplementary + ((first - 0xD800) << 10) + (aText[1] - 0xDC00u), 2};
  return {kReplacement, 1};
}

void AppendUtf8(std::string& aText, char32_t aPoint) {
  const auto append = [&aText](char32_t aByte) { aText.push_back(static_cast<char>(aByte)); };
  const auto appendContinuation = [&](unsigned aShift) { append(0x80 | ((aPoint >> aShift) & 0x3F)); };
  if (aPoint < 0x80) {
    append(aPoint);
  } else if (aPoint < 0x800) {
    append(0xC0 | (aPoint >> 6));
    appendContinuation(0);
  } else if (aPoint < kFirstSupplementary) {
    append(0xE0 | (aPoint >> 12));
    appendContinuation(6);
    appendContinuation(0);
  } else {
    append(0xF0 | (aPoint >> 18));
    appendContinuation(12);
    appendContinuation(6);
    appendContinuation(0);
  }
}

void AppendUtf16(std::u16string& aText, char32_t aPoint) {
  if (aPoint < kFirstSupplementary) {
    aText.push_back(static_cast<char16_t>(aPoint));
    return;
  }
  const char32_t offset = aPoint - kFirstSupplementary;
  aText.push_back(static_cast<char16_t>(0xD800 + (offset >> 10)));
  aText.push_back(static_cast<char16_t>(0xDC00 + (offset & 0x3FF)));
}

} // namespace

KrString::KrString(const char* aUtf8) : mUtf8(aUtf8 ? aUtf8 : "") {}

KrString::KrString(std::string_view aUtf8) : mUtf8(aUtf8) {}

KrString::KrString(std::string aUtf8) : mUtf8(std::move(aUtf8)) {}

KrString::KrString(const char16_t* aWide) : KrString(aWide ? std::u16string_view(aWide) : std::u16string_view()) {}

KrString::KrString(std::u16string_view aWide) {
  mUtf8.reserve(aWide.size());
  while (!aWide.empty()) {
    const Decoded decoded = DecodeUtf16(aWide);
    AppendUtf8(mUtf8, decoded.point);
    aWide.remove_prefix(decoded.length);
  }
}

std::u16string KrString::ToWide() const {
  std::u16string wide;
  wide.reserve(mUtf8.size());
  std::string_view rest = mUtf8;
  while (!rest.empty()) {
    const Decoded decoded = DecodeUtf8(rest);
    AppendUtf16(wide, decoded.point);
    rest.remove_prefix(decoded.length);
  }
  return wide;
}

KrString& KrString::operator+=(const KrString& aOther) {
  mUtf8 += aOther.mUtf8;
  return *this;
}

KrString operator+(const KrString& aLeft, const KrString& aRight) {
  KrString joined = aLeft;
  joined += aRight;
  return joined;
}
