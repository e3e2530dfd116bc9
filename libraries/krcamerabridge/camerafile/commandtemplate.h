#pragma once
// A command or an answer of a camera with places for what differs: "GAIN={value:d3}*{check}\r". Which placeholders fit
// where is checked when a file is read; values are put in when a command is sent.

#include "camerafile/checksum.h"
#include "camerafile/wireformat.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace krcamerabridge {

struct TemplatePart {
  enum class Kind : std::uint8_t {
    Literal,
    Value,
    Feature, ///< The value of another feature, which the program knows without asking.
    Check,
    Length, ///< The number of bytes behind it, and what is added.
    Skip,
    Text, ///< The camera's words.
    Code, ///< The number of an error.
  };

  Kind kind = Kind::Literal;
  std::string text = {}; ///< The bytes of Literal, the name of Feature.
  WireFormat format = {};
  std::int64_t added = 0;       ///< Of Length.
  std::size_t featureIndex = 0; ///< Of Feature, in the file's list of features.
};

using CommandTemplate = std::vector<TemplatePart>;

inline constexpr std::size_t kMostTemplateBytes = 1024;
inline constexpr std::size_t kMostTemplateParts = 64;

/// How a checksum is made: of the bytes of a message before it, but for the first `from` and the last `gap`.
struct ChecksumRule {
  ChecksumKind kind = ChecksumKind::None;
  WireFormat format = {};
  std::size_t from = 0;
  std::size_t gap = 0;

  /// What it is of all bytes that stand before it.
  std::uint16_t Compute(std::string_view aBefore) const {
    const std::size_t end = aBefore.size() - std::min(gap, aBefore.size());
    const std::size_t begin = std::min(from, end);
    return ComputeChecksum(kind, aBefore.substr(begin, end - begin));
  }
};

/// Texts are characters with placeholders in braces; bytes are pairs of hexadecimal digits, placeholders, and texts
/// between quotes. Whatever is wrong is appended to aProblems, each with the word that it is about.
CommandTemplate ParseCommandTemplate(std::string_view aText, bool aIsBinary, std::vector<std::string>& aProblems);

const TemplatePart* FindPart(const CommandTemplate& aTemplate, TemplatePart::Kind aKind);
/// The bytes of the literal at the end; empty where the last part is another.
std::string_view GetEnding(const CommandTemplate& aTemplate);
/// How many bytes a part always takes; 0 where that differs.
std::size_t GetFixedPartSize(const TemplatePart& aPart);
/// Whether it has a whole number of a fixed size, which lengths and checksums have to be.
bool HasFixedWholeNumber(const TemplatePart& aPart);
/// Why bytes cannot be read by it: something of any length has to end at a literal. Empty where they can.
std::string FindAnswerProblem(const CommandTemplate& aTemplate);
/// One behind the other.
CommandTemplate Join(const CommandTemplate& aFirst, const CommandTemplate& aSecond);

/// The bytes of a message, its length and checksum among them; nothing where one does not fit its format. All other
/// placeholders must have become literals.
std::optional<std::string> BuildCommand(const CommandTemplate& aTemplate, const ChecksumRule& aRule);

} // namespace krcamerabridge
