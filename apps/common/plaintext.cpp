#include "plaintext.h"

#include <algorithm>
#include <charconv>
#include <cstddef>

namespace krapps {

namespace {

bool IsControl(char16_t aUnit) {
  return aUnit < 0x20 || (aUnit >= 0x7F && aUnit < 0xA0);
}

// Marks that turn or hide what follows them on a terminal.
bool IsFormatMark(char16_t aUnit) {
  return (aUnit >= 0x200B && aUnit <= 0x200F) || (aUnit >= 0x2028 && aUnit <= 0x202E) ||
         (aUnit >= 0x2066 && aUnit <= 0x2069) || aUnit == 0xFEFF;
}

std::size_t CountCharacters(const std::string& aText) {
  return static_cast<std::size_t>(std::count_if(
      aText.begin(), aText.end(), [](char aByte) { return (static_cast<unsigned char>(aByte) & 0xC0U) != 0x80U; }));
}

} // namespace

std::string MakeCell(const KrString& aText) {
  std::u16string cell;
  for (const char16_t unit : aText.ToWide()) {
    const bool isBlank = unit == u' ' || unit == u'\t' || unit == 0xA0;
    if (!isBlank)
      cell += IsControl(unit) || IsFormatMark(unit) ? u'?' : unit;
    else if (!cell.empty() && cell.back() != u' ')
      cell += u' ';
  }
  if (!cell.empty() && cell.back() == u' ')
    cell.pop_back();
  return cell.empty() ? "-" : KrString(cell).ToUtf8();
}

std::string MakeField(const KrString& aText) {
  std::u16string field = aText.ToWide();
  std::replace_if(
      field.begin(), field.end(), [](char16_t aUnit) { return IsControl(aUnit) || IsFormatMark(aUnit); }, u'?');
  return KrString(field).ToUtf8();
}

std::string FormatFixed(double aValue, int aDigits) {
  char text[400]; // The longest finite number has 309 digits before the point.
  const auto end = std::to_chars(text, text + sizeof text, aValue, std::chars_format::fixed, aDigits).ptr;
  return {text, end};
}

std::string AlignColumns(const std::vector<std::vector<std::string>>& aRows) {
  std::vector<std::size_t> widths;
  for (const auto& row : aRows) {
    widths.resize(std::max(widths.size(), row.size()));
    for (std::size_t column = 0; column < row.size(); ++column)
      widths[column] = std::max(widths[column], CountCharacters(row[column]));
  }

  std::string text;
  for (const auto& row : aRows) {
    for (std::size_t column = 0; column < row.size(); ++column) {
      text += row[column];
      if (column + 1 < row.size())
        text.append(widths[column] - CountCharacters(row[column]) + 2, ' ');
    }
    text += '\n';
  }
  return text;
}

} // namespace krapps
