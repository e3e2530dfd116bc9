#include "logic/browser/settingsvalue.h"

#include <algorithm>
#include <array>
#include <charconv>

namespace krgui {

namespace {

char ToLower(char aLetter) {
  return aLetter >= 'A' && aLetter <= 'Z' ? static_cast<char>(aLetter - 'A' + 'a') : aLetter;
}

std::string_view CutPrefix(std::string_view aText, std::string_view aPrefix) {
  const bool hasPrefix = EqualsIgnoringCase(aText.substr(0, aPrefix.size()), aPrefix);
  return hasPrefix ? aText.substr(aPrefix.size()) : aText;
}

template <typename Number, typename... Base>
std::optional<Number> ReadNumber(std::string_view aText, Base... aBase) {
  Number number = 0;
  const auto [end, error] = std::from_chars(aText.data(), aText.data() + aText.size(), number, aBase...);
  return error == std::errc() && end == aText.data() + aText.size() ? std::optional<Number>(number) : std::nullopt;
}

} // namespace

bool EqualsIgnoringCase(std::string_view aLeft, std::string_view aRight) {
  return std::equal(aLeft.begin(), aLeft.end(), aRight.begin(), aRight.end(),
                    [](char aOne, char aOther) { return ToLower(aOne) == ToLower(aOther); });
}

std::optional<std::int64_t> ReadSettingInteger(std::string_view aText) {
  const std::string_view digits = CutPrefix(aText, "0x");
  if (digits.size() == aText.size())
    return ReadNumber<std::int64_t>(CutPrefix(aText, "+"));
  const std::optional<std::uint64_t> bits = ReadNumber<std::uint64_t>(digits, 16);
  return bits ? std::optional<std::int64_t>(static_cast<std::int64_t>(*bits)) : std::nullopt;
}

std::optional<bool> ReadSettingBoolean(std::string_view aText) {
  constexpr std::array<std::string_view, 4> kWords = {"0", "1", "false", "true"};
  const auto word = std::find_if(kWords.begin(), kWords.end(),
                                 [aText](std::string_view aWord) { return EqualsIgnoringCase(aText, aWord); });
  return word == kWords.end() ? std::nullopt : std::optional<bool>((word - kWords.begin()) % 2 == 1);
}

std::optional<double> ReadSettingFloat(std::string_view aText) {
  return ReadNumber<double>(CutPrefix(aText, "+"));
}

std::string_view ReadSettingDigits(std::string_view aText) {
  return CutPrefix(aText, "0x");
}

} // namespace krgui
