#pragma once
// How a value is written in a command and read from an answer: "hex4", "u16be". What the value means for the user is
// left to its feature.

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <variant>

namespace krcamerabridge {

/// A value as the camera has it.
using WireValue = std::variant<std::int64_t, double, std::string>;

enum class WireKind : std::uint8_t {
  Automatic, ///< None was said: the feature's type decides.
  Decimal,
  Hex,
  LowerHex,
  Real,     ///< A decimal number with a fraction.
  Text,     ///< As it stands, without blanks around it.
  Raw,      ///< As it stands.
  Unsigned, ///< The remaining kinds are binary.
  Signed,
  BinaryReal,
};

struct WireFormat {
  WireKind kind = WireKind::Automatic;
  /// The characters of a text (0 for as many as it takes), digits behind the point of Real (0 likewise), else bytes.
  std::size_t size = 0;
  bool isBigEndian = false;

  friend bool operator==(const WireFormat&, const WireFormat&) = default;
};

inline constexpr std::size_t kMostFormatSize = 64;

/// The format of a word; nothing for a word that is none. Any thread, as all functions here.
std::optional<WireFormat> ParseWireFormat(std::string_view aWord);
/// How many bytes it always takes; 0 where that differs.
std::size_t GetFixedSize(const WireFormat& aFormat);
bool IsWholeNumber(const WireFormat& aFormat);
bool IsText(const WireFormat& aFormat);
bool IsNumber(const WireFormat& aFormat);
bool IsBinary(const WireFormat& aFormat);
/// The bytes of a value; nothing where it does not fit. A real number for a whole format is rounded.
std::optional<std::string> EncodeWire(const WireFormat& aFormat, const WireValue& aValue);
/// The value of bytes; nothing where they are none. Blanks around numbers and texts, but raw ones, are
/// passed over.
std::optional<WireValue> DecodeWire(const WireFormat& aFormat, std::string_view aBytes);
/// The least and the largest whole number that it can write.
struct WireRange {
  std::int64_t least;
  std::int64_t most;
};
WireRange GetWireRange(const WireFormat& aFormat);

} // namespace krcamerabridge
