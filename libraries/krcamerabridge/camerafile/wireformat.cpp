#include "camerafile/wireformat.h"

#include "krbase/trim.h"

#include <algorithm>
#include <array>
#include <bit>
#include <charconv>
#include <cmath>
#include <limits>

namespace krcamerabridge {

namespace {

struct WordRow {
  std::string_view word;
  WireFormat format;
};

constexpr WordRow kBinaryWords[] = {
    {"u8", {WireKind::Unsigned, 1, true}},      {"u16be", {WireKind::Unsigned, 2, true}},
    {"u16le", {WireKind::Unsigned, 2, false}},  {"u24be", {WireKind::Unsigned, 3, true}},
    {"u24le", {WireKind::Unsigned, 3, false}},  {"u32be", {WireKind::Unsigned, 4, true}},
    {"u32le", {WireKind::Unsigned, 4, false}},  {"i8", {WireKind::Signed, 1, true}},
    {"i16be", {WireKind::Signed, 2, true}},     {"i16le", {WireKind::Signed, 2, false}},
    {"i32be", {WireKind::Signed, 4, true}},     {"i32le", {WireKind::Signed, 4, false}},
    {"i64be", {WireKind::Signed, 8, true}},     {"i64le", {WireKind::Signed, 8, false}},
    {"f32be", {WireKind::BinaryReal, 4, true}}, {"f32le", {WireKind::BinaryReal, 4, false}},
    {"f64be", {WireKind::BinaryReal, 8, true}}, {"f64le", {WireKind::BinaryReal, 8, false}},
};

// A word and, behind it, a size up to aMost.
struct SizedRow {
  std::string_view word;
  WireKind kind;
  std::size_t most;
};

constexpr SizedRow kSizedWords[] = {
    {"lowerhex", WireKind::LowerHex, 16},    {"hex", WireKind::Hex, 16},   {"text", WireKind::Text, kMostFormatSize},
    {"raw", WireKind::Raw, kMostFormatSize}, {"d", WireKind::Decimal, 18}, {"f", WireKind::Real, 15},
};

constexpr std::string_view kBlanks = " \t";

// The whole number nearest to a value; nothing for a text, or where 64 bits do not hold it.
std::optional<std::int64_t> ToWhole(const WireValue& aValue) {
  if (const auto* const whole = std::get_if<std::int64_t>(&aValue))
    return *whole;
  const auto* const real = std::get_if<double>(&aValue);
  constexpr double kEnd = 9223372036854775808.0; // 2^63
  if (!real || !(*real >= -kEnd && *real < kEnd))
    return std::nullopt;
  const double rounded = std::round(*real);
  return rounded < kEnd ? std::optional(static_cast<std::int64_t>(rounded)) : std::nullopt;
}

std::optional<double> ToReal(const WireValue& aValue) {
  if (const auto* const whole = std::get_if<std::int64_t>(&aValue))
    return static_cast<double>(*whole);
  const auto* const real = std::get_if<double>(&aValue);
  return real && std::isfinite(*real) ? std::optional(*real) : std::nullopt;
}

std::string ToBytes(std::uint64_t aNumber, const WireFormat& aFormat) {
  std::string bytes;
  for (std::size_t i = 0; i < aFormat.size; ++i)
    bytes += static_cast<char>(aNumber >> (8 * i) & 0xFF);
  if (aFormat.isBigEndian)
    std::ranges::reverse(bytes);
  return bytes;
}

std::uint64_t FromBytes(std::string_view aBytes, bool aIsBigEndian) {
  std::uint64_t number = 0;
  for (std::size_t i = 0; i < aBytes.size(); ++i)
    number = number << 8 | static_cast<std::uint8_t>(aBytes[aIsBigEndian ? i : aBytes.size() - 1 - i]);
  return number;
}

std::string WriteHex(std::int64_t aNumber, const WireFormat& aFormat) {
  std::array<char, 16> place{};
  const auto end =
      std::to_chars(place.data(), place.data() + place.size(), static_cast<std::uint64_t>(aNumber), 16).ptr;
  std::string digits(place.data(), end);
  if (aFormat.kind == WireKind::Hex)
    std::ranges::transform(digits, digits.begin(),
                           [](char aDigit) { return aDigit >= 'a' ? static_cast<char>(aDigit - 'a' + 'A') : aDigit; });
  return digits.size() < aFormat.size ? std::string(aFormat.size - digits.size(), '0') + digits : digits;
}

std::string WriteDecimal(std::int64_t aNumber, std::size_t aSize) {
  std::string digits = std::to_string(aNumber);
  const std::size_t sign = aNumber < 0 ? 1 : 0;
  if (digits.size() < aSize)
    digits.insert(sign, aSize - digits.size(), '0');
  return digits;
}

std::string WriteReal(double aNumber, std::size_t aDecimals) {
  // The largest number has 309 digits before the point.
  std::array<char, 400> place{};
  char* const begin = place.data();
  char* const end = begin + place.size();
  const auto written = aDecimals > 0
                           ? std::to_chars(begin, end, aNumber, std::chars_format::fixed, static_cast<int>(aDecimals))
                           : std::to_chars(begin, end, aNumber, std::chars_format::fixed);
  return {begin, written.ptr};
}

std::optional<std::string> WriteWhole(const WireFormat& aFormat, std::int64_t aNumber) {
  const WireRange range = GetWireRange(aFormat);
  if (aNumber < range.least || aNumber > range.most)
    return std::nullopt;
  switch (aFormat.kind) {
  case WireKind::Decimal:
    return WriteDecimal(aNumber, aFormat.size);
  case WireKind::Hex:
  case WireKind::LowerHex:
    return WriteHex(aNumber, aFormat);
  default:
    return ToBytes(static_cast<std::uint64_t>(aNumber), aFormat);
  }
}

std::optional<std::string> WriteText(const WireFormat& aFormat, const WireValue& aValue) {
  const auto* const text = std::get_if<std::string>(&aValue);
  if (!text || (aFormat.size > 0 && text->size() > aFormat.size))
    return std::nullopt;
  std::string bytes = *text;
  if (aFormat.size > 0)
    bytes.resize(aFormat.size, ' ');
  return bytes;
}

std::optional<WireValue> ReadDigits(std::string_view aText, int aBase) {
  std::string_view digits = krbase::Trim(aText, kBlanks);
  if (aBase == 16 && (digits.starts_with("0x") || digits.starts_with("0X")))
    digits.remove_prefix(2);
  else if (aBase == 10 && digits.starts_with('+') && !digits.starts_with("+-"))
    digits.remove_prefix(1);
  if (aBase == 16 && digits.starts_with('-'))
    return std::nullopt;
  std::int64_t number = 0;
  const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), number, aBase);
  if (error != std::errc() || end != digits.data() + digits.size())
    return std::nullopt;
  return number;
}

std::optional<WireValue> ReadReal(std::string_view aText) {
  std::string_view digits = krbase::Trim(aText, kBlanks);
  if (digits.starts_with('+') && !digits.starts_with("+-"))
    digits.remove_prefix(1);
  double number = 0;
  const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), number);
  if (error != std::errc() || end != digits.data() + digits.size() || !std::isfinite(number))
    return std::nullopt;
  return number;
}

std::optional<WireValue> ReadBinary(const WireFormat& aFormat, std::string_view aBytes) {
  if (aBytes.size() != aFormat.size)
    return std::nullopt;
  const std::uint64_t number = FromBytes(aBytes, aFormat.isBigEndian);
  if (aFormat.kind == WireKind::BinaryReal) {
    const double real = aFormat.size == 4
                            ? static_cast<double>(std::bit_cast<float>(static_cast<std::uint32_t>(number)))
                            : std::bit_cast<double>(number);
    return std::isfinite(real) ? std::optional<WireValue>(real) : std::nullopt;
  }
  const unsigned unused = aFormat.kind == WireKind::Signed ? 64 - 8 * static_cast<unsigned>(aFormat.size) : 0;
  return static_cast<std::int64_t>(number << unused) >> unused;
}

} // namespace

std::optional<WireFormat> ParseWireFormat(std::string_view aWord) {
  if (const auto row = std::ranges::find(kBinaryWords, aWord, &WordRow::word); row != std::end(kBinaryWords))
    return row->format;
  const auto row =
      std::ranges::find_if(kSizedWords, [aWord](const SizedRow& aRow) { return aWord.starts_with(aRow.word); });
  if (row == std::end(kSizedWords))
    return std::nullopt;
  const std::string_view digits = aWord.substr(row->word.size());
  std::size_t size = 0;
  if (digits.empty())
    return WireFormat{row->kind, 0, false};
  const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), size);
  if (error != std::errc() || end != digits.data() + digits.size() || size < 1 || size > row->most)
    return std::nullopt;
  return WireFormat{row->kind, size, false};
}

std::size_t GetFixedSize(const WireFormat& aFormat) {
  return aFormat.kind == WireKind::Real ? 0 : aFormat.size;
}

bool IsWholeNumber(const WireFormat& aFormat) {
  return aFormat.kind == WireKind::Decimal || aFormat.kind == WireKind::Hex || aFormat.kind == WireKind::LowerHex ||
         aFormat.kind == WireKind::Unsigned || aFormat.kind == WireKind::Signed;
}

bool IsText(const WireFormat& aFormat) {
  return aFormat.kind == WireKind::Text || aFormat.kind == WireKind::Raw;
}

bool IsNumber(const WireFormat& aFormat) {
  return IsWholeNumber(aFormat) || aFormat.kind == WireKind::Real || aFormat.kind == WireKind::BinaryReal;
}

bool IsBinary(const WireFormat& aFormat) {
  return aFormat.kind >= WireKind::Unsigned;
}

std::optional<std::string> EncodeWire(const WireFormat& aFormat, const WireValue& aValue) {
  if (IsText(aFormat) || aFormat.kind == WireKind::Automatic)
    return WriteText(aFormat, aValue);
  if (IsWholeNumber(aFormat)) {
    const std::optional<std::int64_t> whole = ToWhole(aValue);
    return whole ? WriteWhole(aFormat, *whole) : std::nullopt;
  }
  const std::optional<double> real = ToReal(aValue);
  if (!real)
    return std::nullopt;
  if (aFormat.kind == WireKind::Real)
    return WriteReal(*real, aFormat.size);
  if (aFormat.size == 8)
    return ToBytes(std::bit_cast<std::uint64_t>(*real), aFormat);
  if (std::abs(*real) > static_cast<double>(std::numeric_limits<float>::max()))
    return std::nullopt;
  return ToBytes(std::bit_cast<std::uint32_t>(static_cast<float>(*real)), aFormat);
}

std::optional<WireValue> DecodeWire(const WireFormat& aFormat, std::string_view aBytes) {
  switch (aFormat.kind) {
  case WireKind::Decimal:
    return ReadDigits(aBytes, 10);
  case WireKind::Hex:
  case WireKind::LowerHex:
    return ReadDigits(aBytes, 16);
  case WireKind::Real:
    return ReadReal(aBytes);
  case WireKind::Automatic:
  case WireKind::Text:
  case WireKind::Raw: {
    // Cameras fill texts of a fixed size up with blanks or zeros.
    const std::size_t zero = aFormat.size > 0 ? aBytes.find('\0') : std::string_view::npos;
    const std::string_view text = aBytes.substr(0, zero);
    return std::string(aFormat.kind == WireKind::Raw ? text : krbase::Trim(text, kBlanks));
  }
  default:
    return ReadBinary(aFormat, aBytes);
  }
}

WireRange GetWireRange(const WireFormat& aFormat) {
  constexpr WireRange kWhole{std::numeric_limits<std::int64_t>::min(), std::numeric_limits<std::int64_t>::max()};
  const auto power = [](std::int64_t aBase, std::size_t aExponent) {
    std::int64_t result = 1;
    for (std::size_t i = 0; i < aExponent; ++i)
      result *= aBase;
    return result;
  };
  switch (aFormat.kind) {
  case WireKind::Decimal:
    return aFormat.size == 0 ? kWhole : WireRange{1 - power(10, aFormat.size - 1), power(10, aFormat.size) - 1};
  case WireKind::Hex:
  case WireKind::LowerHex:
    return {0, aFormat.size == 0 || aFormat.size >= 16 ? kWhole.most : power(16, aFormat.size) - 1};
  case WireKind::Unsigned:
    return {0, power(256, aFormat.size) - 1};
  case WireKind::Signed:
    return aFormat.size >= 8 ? kWhole : WireRange{-(power(256, aFormat.size) / 2), power(256, aFormat.size) / 2 - 1};
  default:
    return kWhole;
  }
}

} // namespace krcamerabridge
