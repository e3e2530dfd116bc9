#include "simulation/featureaccess.h"

#include "simulation/cameraregisters.h"

#include <algorithm>
#include <array>
#include <string>
#include <utility>

namespace krtransport {

namespace {

constexpr std::uint32_t kAccessLimitMs = 2000;

KrString ToKrString(std::string_view aText) {
  return std::string(aText);
}

} // namespace

FeatureAccess::FeatureAccess(IKrRegisterPort& aPort, std::vector<KrPixelType> aPixelFormats)
    : mPort(aPort), mPixelFormats(std::move(aPixelFormats)) {}

bool FeatureAccess::HasFeature(const KrString& aName) {
  return FindFeature(aName.ToUtf8()) != nullptr;
}

bool FeatureAccess::IsFeatureAvailable(const KrString& aName) {
  const Feature* const feature = FindFeature(aName.ToUtf8());
  return feature && CheckAvailable(*feature).IsOK();
}

KrResult FeatureAccess::GetEnumerationEntries(const KrString& aName, KrStringList& aEntries) {
  const Feature* feature = nullptr;
  KrResult result = Find(aName, FeatureKind::Enumeration, feature);
  if (result.IsOK())
    result = CheckAvailable(*feature);
  if (!result.IsOK())
    return result;
  aEntries = {};
  for (const FeatureEntry& entry : ListEntries(*feature, mPixelFormats))
    aEntries.Add(ToKrString(entry.name));
  return {};
}

KrResult FeatureAccess::GetEnumeration(const KrString& aName, KrString& aEntry) {
  const Feature* feature = nullptr;
  std::uint32_t value = 0;
  KrResult result = Find(aName, FeatureKind::Enumeration, feature);
  if (result.IsOK())
    result = GetValue(*feature, value);
  if (!result.IsOK())
    return result;
  const std::vector<FeatureEntry> entries = ListEntries(*feature, mPixelFormats);
  const auto entry = std::ranges::find(entries, value, &FeatureEntry::value);
  if (entry == entries.end())
    return {KrResult::Code::ProtocolError,
            "Reading " + aName + ": no entry has the camera's value " + KrString(std::to_string(value)) + "."};
  aEntry = ToKrString(entry->name);
  return {};
}

KrResult FeatureAccess::SetEnumeration(const KrString& aName, const KrString& aEntry) {
  const Feature* feature = nullptr;
  KrResult result = Find(aName, FeatureKind::Enumeration, feature);
  if (!result.IsOK())
    return result;
  const std::vector<FeatureEntry> entries = ListEntries(*feature, mPixelFormats);
  const std::string wanted = aEntry.ToUtf8();
  const auto entry = std::ranges::find(entries, std::string_view(wanted), &FeatureEntry::name);
  if (entry == entries.end())
    return {KrResult::Code::InvalidInput, "Setting " + aName + ": it has no entry " + aEntry + "."};
  return SetValue(*feature, entry->value);
}

KrResult FeatureAccess::GetBoolean(const KrString& aName, bool& aValue) {
  const Feature* feature = nullptr;
  std::uint32_t value = 0;
  KrResult result = Find(aName, FeatureKind::Boolean, feature);
  if (result.IsOK())
    result = GetValue(*feature, value);
  if (result.IsOK())
    aValue = value != 0;
  return result;
}

KrResult FeatureAccess::SetBoolean(const KrString& aName, bool aValue) {
  const Feature* feature = nullptr;
  KrResult result = Find(aName, FeatureKind::Boolean, feature);
  return result.IsOK() ? SetValue(*feature, aValue ? 1 : 0) : result;
}

KrResult FeatureAccess::Find(const KrString& aName, FeatureKind aKind, const Feature*& aFeature) {
  aFeature = FindFeature(aName.ToUtf8());
  if (!aFeature)
    return {KrResult::Code::NotFound, "The simulated camera has no feature " + aName + "."};
  if (aFeature->kind == aKind)
    return {};
  return {KrResult::Code::InvalidInput,
          "The feature " + aName + " is " + (aKind == FeatureKind::Boolean ? "no boolean." : "no enumeration.")};
}

KrResult FeatureAccess::CheckAvailable(const Feature& aFeature) {
  if (aFeature.prerequisite.empty())
    return {};
  std::uint32_t value = 0;
  KrResult result = ReadRegister(FindFeature(aFeature.prerequisite)->address, value);
  if (!result.IsOK() || value == aFeature.requiredValue)
    return result;
  return {KrResult::Code::AccessDenied,
          ToKrString(aFeature.name) + " is not available as " + ToKrString(aFeature.prerequisite) + " is set."};
}

KrResult FeatureAccess::GetValue(const Feature& aFeature, std::uint32_t& aValue) {
  std::uint64_t address = 0;
  KrResult result = CheckAvailable(aFeature);
  if (result.IsOK())
    result = FindRegister(aFeature, address);
  return result.IsOK() ? ReadRegister(address, aValue) : result;
}

KrResult FeatureAccess::SetValue(const Feature& aFeature, std::uint32_t aValue) {
  std::uint32_t locked = 0;
  KrResult result = CheckAvailable(aFeature);
  if (result.IsOK() && aFeature.isLocked)
    result = ReadRegister(cameraregister::kTLParamsLocked, locked);
  if (!result.IsOK())
    return result;
  if (locked != 0)
    return {KrResult::Code::AccessDenied, ToKrString(aFeature.name) + " is locked while a stream runs; stop it first."};
  std::uint64_t address = 0;
  result = FindRegister(aFeature, address);
  if (!result.IsOK())
    return result;
  std::array<std::uint8_t, 4> bytes;
  EncodeInteger(aValue, bytes.data());
  return mPort.Write(address, bytes.data(), bytes.size(), kAccessLimitMs);
}

KrResult FeatureAccess::FindRegister(const Feature& aFeature, std::uint64_t& aAddress) {
  aAddress = aFeature.address;
  if (aFeature.selector.empty())
    return {};
  std::uint32_t index = 0;
  KrResult result = ReadRegister(FindFeature(aFeature.selector)->address, index);
  aAddress += std::uint64_t{index} * aFeature.stride;
  return result;
}

KrResult FeatureAccess::ReadRegister(std::uint64_t aAddress, std::uint32_t& aValue) {
  std::array<std::uint8_t, 4> bytes = {};
  KrResult result = mPort.Read(aAddress, bytes.data(), bytes.size(), kAccessLimitMs);
  aValue = DecodeInteger(bytes.data());
  return result;
}

} // namespace krtransport
