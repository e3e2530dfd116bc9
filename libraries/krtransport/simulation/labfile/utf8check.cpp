#include "simulation/labfile/utf8check.h"

#include <array>
#include <cstdint>

namespace krtransport {

namespace {

// The sequences that begin with a byte of a range; the second byte has limits of its own.
struct SequenceRow {
  std::uint8_t first;
  std::uint8_t last;
  std::size_t length;
  std::uint8_t secondFirst;
  std::uint8_t secondLast;
};
constexpr std::array<SequenceRow, 9> kSequences = {{
    {0x00, 0x7F, 1, 0x00, 0x00},
    {0xC2, 0xDF, 2, 0x80, 0xBF},
    {0xE0, 0xE0, 3, 0xA0, 0xBF},
    {0xE1, 0xEC, 3, 0x80, 0xBF},
    {0xED, 0xED, 3, 0x80, 0x9F},
    {0xEE, 0xEF, 3, 0x80, 0xBF},
    {0xF0, 0xF0, 4, 0x90, 0xBF},
    {0xF1, 0xF3, 4, 0x80, 0xBF},
    {0xF4, 0xF4, 4, 0x80, 0x8F},
}};

const SequenceRow* FindSequence(std::uint8_t aFirst) {
  for (const SequenceRow& row : kSequences) {
    if (aFirst >= row.first && aFirst <= row.last)
      return &row;
  }
  return nullptr;
}

bool IsWhole(const SequenceRow& aRow, std::string_view aText) {
  if (aText.size() < aRow.length)
    return false;
  for (std::size_t i = 1; i < aRow.length; ++i) {
    const auto byte = static_cast<std::uint8_t>(aText[i]);
    const std::uint8_t first = i == 1 ? aRow.secondFirst : std::uint8_t{0x80};
    const std::uint8_t last = i == 1 ? aRow.secondLast : std::uint8_t{0xBF};
    if (byte < first || byte > last)
      return false;
  }
  return true;
}

} // namespace

std::optional<std::size_t> FindInvalidUtf8(std::string_view aText) {
  for (std::size_t at = 0; at < aText.size();) {
    const SequenceRow* const row = FindSequence(static_cast<std::uint8_t>(aText[at]));
    if (!row || !IsWhole(*row, aText.substr(at)))
      return at;
    at += row->length;
  }
  return std::nullopt;
}

} // namespace krtransport
