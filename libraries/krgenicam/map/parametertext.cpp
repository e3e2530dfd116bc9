#include "map/parametertext.h"

#include "description/lexical.h"
#include "map/tableorder.h"
#include "nodes/enumerationnode.h"
#include "nodes/numbertext.h"
#include "nodes/registernode.h"

#include <array>
#include <cmath>
#include <cstdint>
#include <limits>
#include <optional>
#include <vector>

namespace krgenicam {

namespace {

KrResult RefuseText(const Node& aNode, std::string_view aText, const std::string& aWanted) {
  return {KrResult::Code::InvalidInput,
          QuoteName(aNode.GetName()) + " cannot be set to " + Quote(aText) + ": it takes " + aWanted + "."};
}

KrResult ReadInteger(Evaluation& aEvaluation, Node& aNode, std::string& aText) {
  Number value;
  KrResult result = aNode.GetValue(aEvaluation, value);
  if (result.IsOK())
    aText = FormatNumber(Number(value.ToInteger()));
  return result;
}

KrResult WriteInteger(Evaluation& aEvaluation, Node& aNode, std::string_view aText) {
  const std::optional<std::int64_t> value = ParseInteger(Trim(aText));
  return value ? aNode.SetValue(aEvaluation, Number(*value)) : RefuseText(aNode, aText, "a whole number of 64 bits");
}

KrResult ReadFloat(Evaluation& aEvaluation, Node& aNode, std::string& aText) {
  Number value;
  KrResult result = aNode.GetValue(aEvaluation, value);
  if (result.IsOK())
    aText = FormatNumber(Number(value.ToFloat()));
  return result;
}

// What is beyond all numbers counts as the largest one, which nobody wrote: its refusal names the text.
KrResult NameText(const KrResult& aRefusal, const Node& aNode, double aValue, std::string_view aText) {
  const std::string attempt = QuoteName(aNode.GetName()) + " cannot be set to ";
  const std::string counted = attempt + FormatNumber(Number(aValue));
  const std::string description = aRefusal.GetDescription().ToUtf8();
  if (!description.starts_with(counted))
    return aRefusal;
  return {aRefusal.GetCode(), attempt + Quote(aText) + description.substr(counted.size())};
}

KrResult WriteFloat(Evaluation& aEvaluation, Node& aNode, std::string_view aText) {
  const std::optional<double> value = ParseFloat(Trim(aText));
  if (!value || std::isnan(*value))
    return RefuseText(aNode, aText, "a number");
  KrResult result = aNode.SetValue(aEvaluation, Number(*value));
  const bool isLargest = std::abs(*value) == std::numeric_limits<double>::max();
  return isLargest && result == KrResult::Code::OutOfRange ? NameText(result, aNode, *value, aText) : result;
}

KrResult ReadBoolean(Evaluation& aEvaluation, Node& aNode, std::string& aText) {
  Number value;
  KrResult result = aNode.GetValue(aEvaluation, value);
  if (result.IsOK())
    aText = value.ToInteger() != 0 ? "1" : "0";
  return result;
}

KrResult WriteBoolean(Evaluation& aEvaluation, Node& aNode, std::string_view aText) {
  constexpr std::array<std::string_view, 4> kWords = {"0", "1", "false", "true"};
  const std::optional<std::size_t> word = FindWord(kWords, Trim(aText));
  return word ? aNode.SetValue(aEvaluation, Number(static_cast<std::int64_t>(*word % 2)))
              : RefuseText(aNode, aText, "1, 0, true or false");
}

KrResult WriteEnumeration(Evaluation& aEvaluation, Node& aNode, std::string_view aText) {
  // An entry's name may look like a number.
  if (!static_cast<EnumerationNode&>(aNode).FindEntry(aText)) {
    if (const std::optional<std::int64_t> value = ParseInteger(Trim(aText)))
      return aNode.SetValue(aEvaluation, Number(*value));
  }
  return aNode.SetText(aEvaluation, aText);
}

KrResult WriteString(Evaluation& aEvaluation, Node& aNode, std::string_view aText) {
  return aNode.SetText(aEvaluation, aText);
}

KrResult ReadRegister(Evaluation& aEvaluation, Node& aNode, std::string& aText) {
  constexpr std::string_view kDigits = "0123456789ABCDEF";
  std::vector<std::uint8_t> bytes;
  KrResult result = static_cast<RegisterNode&>(aNode).GetBytes(aEvaluation, bytes);
  if (!result.IsOK())
    return result;
  aText.clear();
  for (const std::uint8_t byte : bytes) {
    aText += kDigits[byte >> 4];
    aText += kDigits[byte & 15];
  }
  return result;
}

std::optional<std::uint8_t> ParseDigit(char aDigit) {
  if (aDigit >= '0' && aDigit <= '9')
    return static_cast<std::uint8_t>(aDigit - '0');
  const char lower = static_cast<char>(aDigit | 0x20);
  if (lower >= 'a' && lower <= 'f')
    return static_cast<std::uint8_t>(lower - 'a' + 10);
  return std::nullopt;
}

KrResult WriteRegister(Evaluation& aEvaluation, Node& aNode, std::string_view aText) {
  std::string_view digits = Trim(aText);
  if (digits.starts_with("0x") || digits.starts_with("0X"))
    digits.remove_prefix(2);
  std::vector<std::uint8_t> bytes(digits.size() / 2);
  bool isValid = digits.size() % 2 == 0;
  for (std::size_t i = 0; i < bytes.size() && isValid; ++i) {
    const std::optional<std::uint8_t> high = ParseDigit(digits[2 * i]);
    const std::optional<std::uint8_t> low = ParseDigit(digits[2 * i + 1]);
    isValid = high && low;
    if (isValid)
      bytes[i] = static_cast<std::uint8_t>(*high << 4 | *low);
  }
  return isValid ? static_cast<RegisterNode&>(aNode).SetBytes(aEvaluation, bytes)
                 : RefuseText(aNode, aText, "two hexadecimal digits for each byte");
}

KrResult ReadNothing(Evaluation&, Node& aNode, std::string&) {
  return {KrResult::Code::InvalidInput, "\"" + std::string(aNode.GetName()) + "\" has no value."};
}

KrResult WriteNothing(Evaluation&, Node& aNode, std::string_view) {
  return {KrResult::Code::InvalidInput, "\"" + std::string(aNode.GetName()) + "\" has no value that can be set."};
}

struct Row {
  KrGenType type;
  KrResult (*read)(Evaluation&, Node&, std::string&);
  KrResult (*write)(Evaluation&, Node&, std::string_view);
};

// In the order of KrGenType.
constexpr Row kRows[] = {
    {KrGenType::Integer, ReadInteger, WriteInteger},    {KrGenType::Enumeration, GetText, WriteEnumeration},
    {KrGenType::Boolean, ReadBoolean, WriteBoolean},    {KrGenType::String, GetText, WriteString},
    {KrGenType::Command, ReadNothing, WriteNothing},    {KrGenType::Float, ReadFloat, WriteFloat},
    {KrGenType::Register, ReadRegister, WriteRegister}, {KrGenType::Other, ReadNothing, WriteNothing},
};

static_assert(IsInOrderOf(kRows, &Row::type));

} // namespace

KrResult GetText(Evaluation& aEvaluation, Node& aNode, std::string& aText) {
  if (!IsReadable(aNode.GetAccess(aEvaluation, Facet::AccessUnlocked)))
    return aNode.ExplainAccess(aEvaluation, false);
  return aNode.ReadText(aEvaluation, aText);
}

KrResult ReadAsText(Evaluation& aEvaluation, Node& aNode, std::string& aText) {
  return kRows[static_cast<std::size_t>(aNode.GetType())].read(aEvaluation, aNode, aText);
}

KrResult WriteFromText(Evaluation& aEvaluation, Node& aNode, std::string_view aText) {
  return kRows[static_cast<std::size_t>(aNode.GetType())].write(aEvaluation, aNode, aText);
}

} // namespace krgenicam
