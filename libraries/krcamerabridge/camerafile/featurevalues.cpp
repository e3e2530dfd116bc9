#include "camerafile/featurevalues.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstring>
#include <string>

namespace krcamerabridge {

namespace {

bool HasEntries(const FileFeature& aFeature) {
  return aFeature.type == FileType::Boolean || aFeature.type == FileType::Enumeration;
}

bool IsScaled(const FileFeature& aFeature) {
  return aFeature.scale != 1 || aFeature.offset != 0;
}

double ToReal(const WireValue& aValue) {
  if (const auto* const whole = std::get_if<std::int64_t>(&aValue))
    return static_cast<double>(*whole);
  const auto* const real = std::get_if<double>(&aValue);
  return real ? *real : 0;
}

std::optional<WireValue> ToWhole(double aNumber) {
  constexpr double kEnd = 9223372036854775808.0; // 2^63
  const double rounded = std::round(aNumber);
  if (!(rounded >= -kEnd && rounded < kEnd))
    return std::nullopt;
  return static_cast<std::int64_t>(rounded);
}

std::optional<WireValue> FindEntry(const FileFeature& aFeature, const WireValue& aWire) {
  const auto entry = std::ranges::find_if(aFeature.entries, [&aWire](const FileEntry& aEntry) {
    if (const auto* const number = std::get_if<std::int64_t>(&aWire))
      return aEntry.wireNumber == *number;
    const auto* const text = std::get_if<std::string>(&aWire);
    return text && *text == aEntry.wire;
  });
  if (entry == aFeature.entries.end())
    return std::nullopt;
  return static_cast<std::int64_t>(entry - aFeature.entries.begin());
}

} // namespace

std::uint64_t GetRegisterAddress(std::size_t aFeatureIndex) {
  return (aFeatureIndex + 1) * kRegisterStride;
}

std::size_t GetRegisterLength(const FileFeature& aFeature) {
  return aFeature.type == FileType::String ? aFeature.maxLength : 8;
}

void ToRegister(const FileFeature& aFeature, const WireValue& aShown, std::span<std::uint8_t> aBytes) {
  std::ranges::fill(aBytes, std::uint8_t{0});
  if (const auto* const text = std::get_if<std::string>(&aShown)) {
    std::copy_n(text->begin(), std::min(text->size(), aBytes.size()), aBytes.begin());
    return;
  }
  const std::uint64_t bits = aFeature.type == FileType::Float
                                 ? std::bit_cast<std::uint64_t>(ToReal(aShown))
                                 : static_cast<std::uint64_t>(std::get<std::int64_t>(aShown));
  for (std::size_t i = 0; i < aBytes.size() && i < sizeof bits; ++i)
    aBytes[i] = static_cast<std::uint8_t>(bits >> (8 * i));
}

WireValue FromRegister(const FileFeature& aFeature, std::span<const std::uint8_t> aBytes) {
  if (aFeature.type == FileType::String)
    return std::string(aBytes.begin(), std::ranges::find(aBytes, std::uint8_t{0}));
  std::uint64_t bits = 0;
  for (std::size_t i = 0; i < aBytes.size() && i < sizeof bits; ++i)
    bits |= std::uint64_t{aBytes[i]} << (8 * i);
  if (aFeature.type == FileType::Float)
    return std::bit_cast<double>(bits);
  return static_cast<std::int64_t>(bits);
}

std::optional<WireValue> ToWire(const FileFeature& aFeature, const WireValue& aShown, const WireFormat& aFormat) {
  if (HasEntries(aFeature)) {
    const auto index = static_cast<std::uint64_t>(std::get<std::int64_t>(aShown));
    if (index >= aFeature.entries.size())
      return std::nullopt;
    const FileEntry& entry = aFeature.entries[index];
    if (!IsNumber(aFormat))
      return entry.wire;
    return entry.wireNumber ? std::optional<WireValue>(*entry.wireNumber) : std::nullopt;
  }
  if (aFeature.type == FileType::String || !IsScaled(aFeature))
    return aShown;
  return (ToReal(aShown) - aFeature.offset) / aFeature.scale;
}

std::optional<WireValue> FromWire(const FileFeature& aFeature, const WireValue& aWire) {
  if (HasEntries(aFeature))
    return FindEntry(aFeature, aWire);
  if (aFeature.type == FileType::String)
    return aWire;
  const bool isWhole = std::holds_alternative<std::int64_t>(aWire);
  if (aFeature.type == FileType::Integer && isWhole && !IsScaled(aFeature))
    return aWire;
  const double shown = ToReal(aWire) * aFeature.scale + aFeature.offset;
  if (aFeature.type == FileType::Integer)
    return ToWhole(shown);
  return std::isfinite(shown) ? std::optional<WireValue>(shown) : std::nullopt;
}

} // namespace krcamerabridge
