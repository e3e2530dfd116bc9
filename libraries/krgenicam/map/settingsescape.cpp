#include "map/settingsescape.h"

#include <algorithm>
#include <charconv>
#include <iterator>

namespace krgenicam {

namespace {

struct EscapeRow {
  char byte;
  char letter;
};

constexpr EscapeRow kEscapes[] = {{'\n', 'n'}, {'\r', 'r'}, {'\t', 't'}, {'\\', '\\'}};
constexpr std::string_view kHexDigits = "0123456789abcdef";

void AppendEscape(std::string& aText, char aByte) {
  const auto* const row =
      std::find_if(std::begin(kEscapes), std::end(kEscapes), [&](const EscapeRow& aRow) { return aRow.byte == aByte; });
  aText += '\\';
  if (row != std::end(kEscapes)) {
    aText += row->letter;
    return;
  }
  const auto number = static_cast<unsigned char>(aByte);
  aText += 'x';
  aText += kHexDigits[number / 16];
  aText += kHexDigits[number % 16];
}

// The byte of an escape whose letter is at aAt, which moves behind it; false where it is none.
bool TakeEscape(std::string_view aText, std::size_t& aAt, char& aByte) {
  if (aAt == aText.size())
    return false;
  const char letter = aText[aAt++];
  const auto* const row = std::find_if(std::begin(kEscapes), std::end(kEscapes),
                                       [&](const EscapeRow& aRow) { return aRow.letter == letter; });
  if (row != std::end(kEscapes)) {
    aByte = row->byte;
    return true;
  }
  const std::string_view digits = aText.substr(aAt, 2);
  unsigned number = 0;
  const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), number, 16);
  if (letter != 'x' || digits.size() != 2 || error != std::errc() || end != digits.data() + digits.size())
    return false;
  aByte = static_cast<char>(number);
  aAt += 2;
  return true;
}

} // namespace

bool IsSettingName(std::string_view aName) {
  return !aName.empty() && !aName.starts_with('#') &&
         std::none_of(aName.begin(), aName.end(), [](char aByte) { return aByte == ' ' || IsControl(aByte); });
}

bool NeedsEscape(std::string_view aValue) {
  return !aValue.empty() &&
         (aValue.front() == ' ' || aValue.back() == ' ' || std::any_of(aValue.begin(), aValue.end(), IsControl));
}

std::string EscapeSetting(std::string_view aValue) {
  std::string text;
  for (std::size_t i = 0; i < aValue.size(); ++i) {
    const bool isOuterBlank = aValue[i] == ' ' && (i == 0 || i + 1 == aValue.size());
    if (isOuterBlank || aValue[i] == '\\' || IsControl(aValue[i]))
      AppendEscape(text, aValue[i]);
    else
      text += aValue[i];
  }
  return text;
}

bool UnescapeSetting(std::string& aValue) {
  std::string bytes;
  for (std::size_t at = 0; at < aValue.size();) {
    char byte = aValue[at++];
    if (byte == '\\' && !TakeEscape(aValue, at, byte))
      return false;
    bytes += byte;
  }
  aValue = std::move(bytes);
  return true;
}

} // namespace krgenicam
