#include "krbase/utf8sequence.h"

#include <algorithm>
#include <array>
#include <cstdint>

namespace krbase {

namespace {

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

} // namespace

Utf8Sequence ReadUtf8(std::string_view aText) {
  const auto lead = static_cast<std::uint8_t>(aText.front());
  if (lead < 0x80)
    return {lead, 1, true};
  const auto row = std::find_if(kLeadRows.begin(), kLeadRows.end(), [lead](const LeadRow& aRow) {
    return lead >= aRow.firstLead && lead <= aRow.lastLead;
  });
  if (row == kLeadRows.end())
    return {};

  // A lead byte of a sequence of n bytes carries 7 - n bits.
  char32_t point = lead & ((1u << (7 - row->length)) - 1);
  for (std::size_t index = 1; index < row->length; ++index) {
    const std::uint8_t least = index == 1 ? row->leastSecond : 0x80;
    const std::uint8_t most = index == 1 ? row->mostSecond : 0xBF;
    const auto byte = index < aText.size() ? static_cast<std::uint8_t>(aText[index]) : std::uint8_t{0};
    if (byte < least || byte > most)
      return {.length = index};
    point = (point << 6) | (byte & 0x3Fu);
  }
  return {point, row->length, true};
}

void AppendUtf8(std::string& aText, char32_t aPoint) {
  const auto append = [&aText](char32_t aByte) { aText.push_back(static_cast<char>(aByte)); };
  const auto appendContinuation = [&](unsigned aShift) { append(0x80 | ((aPoint >> aShift) & 0x3F)); };
  if (aPoint < 0x80) {
    append(aPoint);
  } else if (aPoint < 0x800) {
    append(0xC0 | (aPoint >> 6));
    appendContinuation(0);
  } else if (aPoint < 0x10000) {
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

} // namespace krbase
