#include "hostfeatureport.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>
#include <span>
#include <string>

namespace krdevice {

namespace {

using krsystem::HostFeature;
using krsystem::HostFeatureKind;
using krsystem::HostFeatureValue;

constexpr std::uint64_t kFirstAddress = 0x1000;
constexpr std::uint64_t kStride = 0x200;
constexpr std::size_t kNumberBytes = 8;

static_assert(std::endian::native == std::endian::little, "Numbers are copied as they are.");

KrString NameFeature(const HostFeature& aFeature) {
  return KrString(aFeature.info.name);
}

void Encode(const HostFeatureValue& aValue, std::span<std::uint8_t> aBytes) {
  std::ranges::fill(aBytes, std::uint8_t{0});
  if (const auto* const text = std::get_if<KrString>(&aValue))
    std::memcpy(aBytes.data(), text->CStr(), std::min(text->GetLength(), aBytes.size()));
  else if (const auto* const number = std::get_if<double>(&aValue))
    std::memcpy(aBytes.data(), number, sizeof(*number));
  else
    std::memcpy(aBytes.data(), &std::get<std::int64_t>(aValue), sizeof(std::int64_t));
}

HostFeatureValue Decode(HostFeatureKind aKind, std::span<const std::uint8_t> aBytes) {
  if (aKind == HostFeatureKind::Text) {
    const auto end = std::ranges::find(aBytes, std::uint8_t{0});
    return KrString(std::string(aBytes.begin(), end));
  }
  if (aKind == HostFeatureKind::Float) {
    double number = 0;
    std::memcpy(&number, aBytes.data(), sizeof(number));
    return number;
  }
  std::int64_t number = 0;
  std::memcpy(&number, aBytes.data(), sizeof(number));
  return number;
}

bool IsOfKind(const HostFeatureValue& aValue, HostFeatureKind aKind) {
  if (aKind == HostFeatureKind::Text)
    return std::holds_alternative<KrString>(aValue);
  return aKind == HostFeatureKind::Float ? std::holds_alternative<double>(aValue)
                                         : std::holds_alternative<std::int64_t>(aValue);
}

} // namespace

HostFeaturePort::HostFeaturePort(const krsystem::HostFeatures& aFeatures)
    : mFeatures(aFeatures), mBases(aFeatures.size()) {}

std::uint64_t HostFeaturePort::GetAddress(std::size_t aIndex) {
  return kFirstAddress + kStride * aIndex;
}

std::size_t HostFeaturePort::GetLength(HostFeatureKind aKind) {
  return aKind == HostFeatureKind::Text ? kStride : kNumberBytes;
}

KrResult HostFeaturePort::Find(std::uint64_t aAddress, const void* aData, std::size_t aLength, std::uint32_t aTimeoutMs,
                               std::size_t& aIndex) const {
  if (!aData || aTimeoutMs == 0)
    return {KrResult::Code::InvalidInput,
            "Accessing a feature of this host: data (not null) and a time limit of at least 1 ms are needed."};
  const std::uint64_t offset = aAddress - kFirstAddress;
  const std::uint64_t index = offset / kStride;
  if (aAddress < kFirstAddress || offset % kStride != 0 || index >= mFeatures.size())
    return {KrResult::Code::InvalidInput,
            "Accessing a feature of this host: there is none at address " + std::to_string(aAddress) + "."};
  aIndex = static_cast<std::size_t>(index);
  const HostFeature& feature = mFeatures[aIndex];
  if (const std::size_t length = GetLength(feature.info.kind); aLength != length)
    return {KrResult::Code::InvalidInput, "Accessing " + NameFeature(feature) + ": " + std::to_string(aLength) +
                                              " bytes; it is read and written as a whole, which is " +
                                              std::to_string(length) + "."};
  return {};
}

KrResult HostFeaturePort::Read(std::uint64_t aAddress, void* aData, std::size_t aLength, std::uint32_t aTimeoutMs,
                               const std::stop_token& aCancel) {
  std::size_t index = 0;
  if (KrResult found = Find(aAddress, aData, aLength, aTimeoutMs, index); !found.IsOK())
    return found;
  const HostFeature& feature = mFeatures[index];
  if (!feature.read)
    return {KrResult::Code::AccessDenied, "Reading " + NameFeature(feature) + ": it can only be written."};
  const std::lock_guard lock(mAccessMutex);
  HostFeatureValue value;
  KrResult result = feature.read(value, {.timeoutMs = aTimeoutMs, .cancel = aCancel});
  if (result.IsOK() && !IsOfKind(value, feature.info.kind))
    result = {KrResult::Code::ProtocolError, "Reading " + NameFeature(feature) + ": it gave a value of another kind."};
  if (result.IsOK() && feature.info.isCounter)
    result = CountFrom(index, value);
  if (result.IsOK())
    Encode(value, std::span(static_cast<std::uint8_t*>(aData), aLength));
  return result;
}

KrResult HostFeaturePort::Write(std::uint64_t aAddress, const void* aData, std::size_t aLength,
                                std::uint32_t aTimeoutMs, const std::stop_token& aCancel) {
  std::size_t index = 0;
  if (KrResult found = Find(aAddress, aData, aLength, aTimeoutMs, index); !found.IsOK())
    return found;
  const HostFeature& feature = mFeatures[index];
  if (!feature.write)
    return {KrResult::Code::AccessDenied, "Writing " + NameFeature(feature) + ": it can only be read."};
  const HostFeatureValue value = Decode(feature.info.kind, std::span(static_cast<const std::uint8_t*>(aData), aLength));
  // The command that resets the counters reads all of them.
  if (feature.info.kind == HostFeatureKind::Command)
    return feature.write(value, {.timeoutMs = aTimeoutMs, .cancel = aCancel});
  const std::lock_guard lock(mAccessMutex);
  return feature.write(value, {.timeoutMs = aTimeoutMs, .cancel = aCancel});
}

// A counter that is behind its base has begun anew itself.
KrResult HostFeaturePort::CountFrom(std::size_t aIndex, HostFeatureValue& aValue) {
  auto* const count = std::get_if<std::int64_t>(&aValue);
  if (!count)
    return {KrResult::Code::ProtocolError, "Reading " + NameFeature(mFeatures[aIndex]) + ": it is no whole number."};
  const std::lock_guard lock(mBaseMutex);
  if (*count < mBases[aIndex])
    mBases[aIndex] = 0;
  *count -= mBases[aIndex];
  return {};
}

KrResult HostFeaturePort::ResetCounters() {
  const std::lock_guard lock(mAccessMutex);
  KrResult first;
  for (std::size_t i = 0; i < mFeatures.size(); ++i) {
    if (!mFeatures[i].info.isCounter || !mFeatures[i].read)
      continue;
    HostFeatureValue value;
    const KrResult read = mFeatures[i].read(value, {});
    if (!read.IsOK() && first.IsOK())
      first = read;
    const auto* const count = std::get_if<std::int64_t>(&value);
    const std::lock_guard baseLock(mBaseMutex);
    if (read.IsOK() && count)
      mBases[i] = *count;
  }
  return first;
}

void HostFeaturePort::ForgetReset() {
  const std::lock_guard lock(mBaseMutex);
  std::ranges::fill(mBases, 0);
}

} // namespace krdevice
