#include "description/lexical.h"

#include "krbase/utf8cut.h"

#include <array>
#include <charconv>
#include <cmath>
#include <limits>
#include <system_error>

namespace krgenicam {

namespace {

char ToLower(char aCharacter) {
  return aCharacter >= 'A' && aCharacter <= 'Z' ? static_cast<char>(aCharacter + ('a' - 'A')) : aCharacter;
}

bool TakeSign(std::string_view& aText) {
  const bool isNegative = aText.starts_with('-');
  if (isNegative || aText.starts_with('+'))
    aText.remove_prefix(1);
  return isNegative;
}

bool TakeHexPrefix(std::string_view& aText) {
  const bool isHex = aText.starts_with("0x") || aText.starts_with("0X");
  if (isHex)
    aText.remove_prefix(2);
  return isHex;
}

std::optional<std::uint64_t> ParseDigits(std::string_view aText, int aBase) {
  std::uint64_t value = 0;
  const char* const end = aText.data() + aText.size();
  const auto [next, error] = std::from_chars(aText.data(), end, value, aBase);
  return error == std::errc() && next == end ? std::optional(value) : std::nullopt;
}

// Some programs print the largest double with so few digits that it reads as more; what is beyond all doubles counts as
// the largest one, what is below all as 0.
double TakeNearest(std::string_view aText) {
  const std::size_t exponent = aText.find_first_of("eE");
  const bool isSmall = exponent == std::string_view::npos ? aText.starts_with("0.") || aText.starts_with('.')
                                                          : aText.substr(exponent + 1).starts_with('-');
  return isSmall ? 0.0 : std::numeric_limits<double>::max();
}

// Without a sign.
std::optional<double> ParseMagnitude(std::string_view aText) {
  std::string_view digits = aText;
  if (TakeHexPrefix(digits)) {
    const std::optional<std::uint64_t> value = ParseDigits(digits, 16);
    return value ? std::optional(static_cast<double>(*value)) : std::nullopt;
  }
  double value = 0.0;
  const char* const end = aText.data() + aText.size();
  const auto [next, error] = std::from_chars(aText.data(), end, value);
  if (next != end || aText.starts_with('-') || error == std::errc::invalid_argument)
    return std::nullopt;
  return error == std::errc::result_out_of_range ? TakeNearest(aText) : value;
}

std::optional<std::int64_t> ApplySign(std::uint64_t aMagnitude, bool aIsNegative) {
  constexpr std::uint64_t kLowest = std::uint64_t{1} << 63;
  if (aIsNegative && aMagnitude > kLowest)
    return std::nullopt;
  return static_cast<std::int64_t>(aIsNegative ? 0 - aMagnitude : aMagnitude);
}

} // namespace

std::optional<std::int64_t> ParseInteger(std::string_view aText) {
  std::string_view digits = Trim(aText);
  const bool isNegative = TakeSign(digits);
  std::string_view hexDigits = digits;
  const bool isHex = TakeHexPrefix(hexDigits);
  if (const std::optional<std::uint64_t> value = isHex ? ParseDigits(hexDigits, 16) : ParseDigits(digits, 10))
    return ApplySign(*value, isNegative);
  // With a point or an exponent; whole numbers beyond 64 bits have been refused above and are refused here again.
  if (isHex || digits.find_first_of(".eE") == std::string_view::npos)
    return std::nullopt;
  const std::optional<double> value = ParseMagnitude(digits);
  constexpr double kBeyond = 18446744073709551616.0;
  if (!value || !(*value < kBeyond) || std::trunc(*value) != *value)
    return std::nullopt;
  return ApplySign(static_cast<std::uint64_t>(*value), isNegative);
}

std::optional<double> ParseFloat(std::string_view aText) {
  std::string_view magnitude = Trim(aText);
  const bool isNegative = TakeSign(magnitude);
  const std::optional<double> value = ParseMagnitude(magnitude);
  return value && isNegative ? -*value : value;
}

std::optional<std::uint64_t> ParseHex(std::string_view aText) {
  std::string_view digits = Trim(aText);
  TakeHexPrefix(digits);
  return ParseDigits(digits, 16);
}

std::optional<bool> ParseYesNo(std::string_view aText) {
  constexpr std::array<std::string_view, 6> kWords{"Yes", "No", "true", "false", "1", "0"};
  const std::optional<std::size_t> word = FindWord(kWords, Trim(aText));
  return word ? std::optional(*word % 2 == 0) : std::nullopt;
}

bool EqualsIgnoringCase(std::string_view aLeft, std::string_view aRight) {
  if (aLeft.size() != aRight.size())
    return false;
  for (std::size_t i = 0; i < aLeft.size(); ++i) {
    if (ToLower(aLeft[i]) != ToLower(aRight[i]))
      return false;
  }
  return true;
}

std::string Quote(std::string_view aText) {
  constexpr std::size_t kMostBytes = 60;
  const std::string_view beginning = krbase::CutUtf8(aText, kMostBytes);
  return "\"" + std::string(beginning) + (beginning.size() < aText.size() ? "…\"" : "\"");
}

std::string QuoteName(std::string_view aName) {
  return "\"" + std::string(aName) + "\"";
}

} // namespace krgenicam
