#include "valuetext.h"

#include "krgenicam/krgenfloat.h"
#include "krgenicam/krgeninteger.h"
#include "krgenicam/krgenregister.h"
#include "krsystem/ipv4address.h"
#include "plaintext.h"

#include <array>
#include <charconv>
#include <cstddef>
#include <optional>

namespace krtool {

namespace {

constexpr std::size_t kMACBytes = 6;

std::string FormatHex(std::uint64_t aValue) {
  std::array<char, 16> digits;
  const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), aValue, 16).ptr;
  std::string text(digits.data(), end);
  for (char& digit : text)
    digit = digit >= 'a' ? static_cast<char>(digit - 'a' + 'A') : digit;
  return "0x" + text;
}

std::string FormatMAC(std::uint64_t aValue) {
  constexpr std::string_view kDigits = "0123456789abcdef";
  std::string text;
  for (std::size_t byte = kMACBytes; byte-- > 0;) {
    text += kDigits[(aValue >> (8 * byte + 4)) & 0xF];
    text += kDigits[(aValue >> (8 * byte)) & 0xF];
    text += byte > 0 ? ":" : "";
  }
  return text;
}

// "aa:bb:cc:dd:ee:ff", also with '-'; nothing for any other text.
std::optional<std::int64_t> ParseMAC(const std::string& aText) {
  constexpr std::size_t kPlaces = 3 * kMACBytes - 1;
  if (aText.size() != kPlaces)
    return std::nullopt;
  std::int64_t address = 0;
  for (std::size_t at = 0; at < kPlaces; at += 3) {
    unsigned byte = 0;
    const auto [end, error] = std::from_chars(&aText[at], &aText[at] + 2, byte, 16);
    const bool isParted = at + 2 == kPlaces || aText[at + 2] == ':' || aText[at + 2] == '-';
    if (error != std::errc() || end != &aText[at] + 2 || !isParted)
      return std::nullopt;
    address = address * 256 + byte;
  }
  return address;
}

KrGenRepresentation GetRepresentation(KrGenInteger& aInteger) {
  KrGenRepresentation representation = KrGenRepresentation::PureNumber;
  return aInteger.GetRepresentation(representation).IsOK() ? representation : KrGenRepresentation::PureNumber;
}

// As many digits as it takes to read the same number.
std::string FormatFloat(double aValue) {
  std::array<char, 40> digits;
  const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), aValue).ptr;
  return {digits.data(), end};
}

// Keeps the first reason.
void Note(const KrResult& aResult, std::string& aError) {
  if (!aResult.IsOK() && aError.empty())
    aError = krapps::MakeField(aResult.GetDescription().IsEmpty() ? aResult.GetCodeString() : aResult.GetDescription());
}

// One bound of a range: its text on success.
template <typename Parameter, typename Number, typename Format>
void ReadBound(Parameter& aParameter, KrResult (Parameter::*aGetter)(Number&), Format&& aFormat, std::string& aText,
               std::string& aError) {
  Number number = 0;
  const KrResult read = (aParameter.*aGetter)(number);
  if (read.IsOK())
    aText = aFormat(number);
  Note(read, aError);
}

void ReadRange(KrGenInteger& aInteger, FeatureState& aState) {
  const auto format = [representation = GetRepresentation(aInteger)](std::int64_t aNumber) {
    return FormatInteger(aNumber, representation);
  };
  const auto formatStep = [](std::int64_t aNumber) { return std::to_string(aNumber); };
  ReadBound(aInteger, &KrGenInteger::GetMin, format, aState.minimum, aState.error);
  ReadBound(aInteger, &KrGenInteger::GetMax, format, aState.maximum, aState.error);
  ReadBound(aInteger, &KrGenInteger::GetIncrement, formatStep, aState.increment, aState.error);
}

void ReadRange(KrGenFloat& aFloat, FeatureState& aState) {
  ReadBound(aFloat, &KrGenFloat::GetMin, FormatFloat, aState.minimum, aState.error);
  ReadBound(aFloat, &KrGenFloat::GetMax, FormatFloat, aState.maximum, aState.error);
  if (aFloat.HasIncrement())
    ReadBound(aFloat, &KrGenFloat::GetIncrement, FormatFloat, aState.increment, aState.error);
}

template <typename Parameter>
void ReadNumbers(KrGenParameter& aParameter, FeatureState& aState) {
  if (auto* const number = dynamic_cast<Parameter*>(&aParameter)) {
    KrString unit;
    Note(number->GetUnit(unit), aState.error);
    aState.unit = krapps::MakeField(unit);
    ReadRange(*number, aState);
  }
}

// The bytes stay where they are, many as they may be, and as reading may have effects: what keeps a register from being
// read at all is found out without them.
void NoteWhyUnreadable(KrGenParameter& aParameter, KrGenAccessMode aAccess, std::string& aError) {
  auto* const bytes = dynamic_cast<KrGenRegister*>(&aParameter);
  if (bytes == nullptr || aAccess == KrGenAccessMode::WriteOnly)
    return;
  if (aAccess == KrGenAccessMode::NotAvailable) {
    KrString text;
    Note(bytes->ToString(text), aError);
  }
  std::int64_t number = 0;
  Note(bytes->GetAddress(number), aError);
  Note(bytes->GetLength(number), aError);
}

} // namespace

std::string FormatInteger(std::int64_t aValue, KrGenRepresentation aRepresentation) {
  const auto bits = static_cast<std::uint64_t>(aValue);
  if (aRepresentation == KrGenRepresentation::HexNumber)
    return FormatHex(bits);
  if (aRepresentation == KrGenRepresentation::IPV4Address && bits <= 0xFFFFFFFF)
    return krsystem::FormatIPv4(static_cast<std::uint32_t>(bits)).ToUtf8();
  if (aRepresentation == KrGenRepresentation::MACAddress && bits <= 0xFFFFFFFFFFFF)
    return FormatMAC(bits);
  return std::to_string(aValue);
}

KrResult ReadValueText(KrGenParameter& aParameter, std::string& aText) {
  if (auto* const integer = dynamic_cast<KrGenInteger*>(&aParameter)) {
    std::int64_t value = 0;
    KrResult read = integer->GetValue(value);
    if (read.IsOK())
      aText = FormatInteger(value, GetRepresentation(*integer));
    return read;
  }
  KrString text;
  KrResult read = aParameter.ToString(text);
  if (read.IsOK())
    aText = krapps::MakeField(text);
  return read;
}

FeatureState ReadState(KrGenParameter& aParameter, KrGenAccessMode aAccess) {
  FeatureState state;
  const KrGenType type = aParameter.GetType();
  const bool hasValue = type != KrGenType::Command && type != KrGenType::Register && type != KrGenType::Other;
  if (aAccess == KrGenAccessMode::NotImplemented)
    return state;
  if (!hasValue) {
    NoteWhyUnreadable(aParameter, aAccess, state.error);
    return state;
  }
  if (aAccess != KrGenAccessMode::WriteOnly)
    Note(ReadValueText(aParameter, state.value), state.error);
  if (aAccess != KrGenAccessMode::NotAvailable) {
    ReadNumbers<KrGenInteger>(aParameter, state);
    ReadNumbers<KrGenFloat>(aParameter, state);
  }
  return state;
}

KrResult WriteValueText(KrGenParameter& aParameter, const std::string& aText) {
  if (auto* const integer = dynamic_cast<KrGenInteger*>(&aParameter)) {
    const KrGenRepresentation representation = GetRepresentation(*integer);
    const auto address = krsystem::ParseIPv4(aText);
    if (representation == KrGenRepresentation::IPV4Address && address)
      return integer->SetValue(*address);
    const auto hardwareAddress = ParseMAC(aText);
    if (representation == KrGenRepresentation::MACAddress && hardwareAddress)
      return integer->SetValue(*hardwareAddress);
  }
  return aParameter.FromString(aText);
}

} // namespace krtool
