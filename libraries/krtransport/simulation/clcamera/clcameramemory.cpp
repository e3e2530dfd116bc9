#include "simulation/clcamera/clcameramemory.h"

#include "simulation/cameraregisters.h"
#include "simulation/clcamera/clcamerafeatures.h"

#include <algorithm>
#include <array>
#include <limits>
#include <utility>

namespace krtransport {

using namespace cameraregister;

namespace {

struct TextRow {
  std::uint64_t address;
  KrString LabCLCamera::*text;
};
constexpr std::array<TextRow, 7> kTexts = {{
    {clregister::kManufacturerName, &LabCLCamera::vendorName},
    {clregister::kModelName, &LabCLCamera::modelName},
    {clregister::kFamilyName, &LabCLCamera::familyName},
    {clregister::kDeviceVersion, &LabCLCamera::version},
    {clregister::kManufacturerInfo, &LabCLCamera::manufacturerInfo},
    {clregister::kSerialNumber, &LabCLCamera::serialNumber},
    {clregister::kUserDefinedName, &LabCLCamera::userDefinedName},
}};

// What belongs to a set of values: neither the camera's name nor which set is selected.
bool IsOfSets(const Feature& aFeature) {
  return aFeature.access == RegisterAccess::ReadWrite && aFeature.kind != FeatureKind::Text &&
         aFeature.address != clregister::kUserSetSelector;
}

} // namespace

CLCameraMemory::CLCameraMemory(const LabCLCamera& aCamera) : mFeatures(ListCLCameraFeatures(), aCamera.pixelFormats) {
  for (const Feature& feature : mFeatures.List())
    DefineFeature(feature);
  SetStart(aCamera);
  mDefaults = CopyValues();
  mSaved = mDefaults;
}

void CLCameraMemory::DefineFeature(const Feature& aFeature) {
  Bytes content(aFeature.length);
  if (aFeature.kind == FeatureKind::Float)
    EncodeFloat(aFeature.start, content.data());
  else if (aFeature.kind != FeatureKind::Text)
    EncodeInteger(static_cast<std::uint32_t>(aFeature.start), content.data());
  Define(aFeature.address, aFeature.access, std::move(content));
  mByAddress[aFeature.address] = &aFeature;
}

void CLCameraMemory::SetStart(const LabCLCamera& aCamera) {
  for (const TextRow& row : kTexts) {
    Bytes& bytes = mRegisters.at(row.address).bytes;
    std::ranges::copy((aCamera.*row.text).ToUtf8().substr(0, bytes.size()), bytes.begin());
  }
  for (const std::uint64_t address : {kWidthMax, kWidth})
    SetInteger(address, aCamera.sensorWidth);
  for (const std::uint64_t address : {kHeightMax, kHeight})
    SetInteger(address, aCamera.sensorHeight);
  SetInteger(kPixelFormat, aCamera.pixelFormats.front());
  EncodeFloat(aCamera.framesPerSecond, mRegisters.at(kAcquisitionFrameRate).bytes.data());
}

void CLCameraMemory::Define(std::uint64_t aAddress, RegisterAccess aAccess, Bytes aContent) {
  mRegisters[aAddress] = {aAccess, std::move(aContent)};
}

void CLCameraMemory::Restart() {
  SetValues(mDefaults);
  SetInteger(clregister::kUserSetSelector, clregister::kDefaultSet);
}

std::string CLCameraMemory::GetText(std::uint64_t aAddress) const {
  const Bytes& bytes = mRegisters.at(aAddress).bytes;
  return {bytes.begin(), std::ranges::find(bytes, std::uint8_t{0})};
}

std::uint64_t CLCameraMemory::GetLong(std::uint64_t aAddress) const {
  const std::uint8_t* const bytes = mRegisters.at(aAddress).bytes.data();
  return std::uint64_t{DecodeInteger(bytes)} << 32 | DecodeInteger(bytes + 4);
}

void CLCameraMemory::SetInteger(std::uint64_t aAddress, std::uint32_t aValue) {
  EncodeInteger(aValue, mRegisters.at(aAddress).bytes.data());
}

void CLCameraMemory::SetLong(std::uint64_t aAddress, std::uint64_t aValue) {
  EncodeLong(aValue, mRegisters.at(aAddress).bytes.data());
}

CLCameraMemory::Registers::const_iterator CLCameraMemory::FindAt(std::uint64_t aAddress) const {
  const auto next = mRegisters.upper_bound(aAddress);
  if (next == mRegisters.begin())
    return mRegisters.end();
  const auto found = std::prev(next);
  return aAddress - found->first < found->second.bytes.size() ? found : mRegisters.end();
}

CLAccess CLCameraMemory::Read(std::uint64_t aAddress, std::span<std::uint8_t> aBytes, std::uint64_t aNowNs) {
  if (aBytes.empty())
    return CLAccess::BadValue;
  if (aBytes.size() - 1 > std::numeric_limits<std::uint64_t>::max() - aAddress)
    return CLAccess::NoRegister;
  EncodeFloat(GetTemperature(aNowNs), mRegisters.at(kTemperature).bytes.data());
  Bytes read;
  while (read.size() < aBytes.size()) {
    const std::uint64_t address = aAddress + read.size();
    const auto found = FindAt(address);
    if (found == mRegisters.end())
      return CLAccess::NoRegister;
    if (found->second.access == RegisterAccess::WriteOnly)
      return CLAccess::OnlyWritten;
    const std::span<const std::uint8_t> rest = std::span(found->second.bytes).subspan(address - found->first);
    const auto piece = rest.first(std::min(rest.size(), aBytes.size() - read.size()));
    read.insert(read.end(), piece.begin(), piece.end());
  }
  std::ranges::copy(read, aBytes.begin());
  return CLAccess::Done;
}

CLAccess CLCameraMemory::Write(std::uint64_t aAddress, std::span<const std::uint8_t> aBytes) {
  const auto found = mRegisters.find(aAddress);
  if (found == mRegisters.end())
    return FindAt(aAddress) == mRegisters.end() ? CLAccess::NoRegister : CLAccess::BadValue;
  if (found->second.access == RegisterAccess::ReadOnly)
    return CLAccess::OnlyRead;
  Bytes& bytes = found->second.bytes;
  const auto feature = mByAddress.find(aAddress);
  const bool isText = feature != mByAddress.end() && feature->second->kind == FeatureKind::Text;
  const bool isLong = isText ? aBytes.size() <= bytes.size() && !aBytes.empty() : aBytes.size() == bytes.size();
  if (!isLong || (feature != mByAddress.end() && !IsAccepted(*feature->second, aBytes)))
    return CLAccess::BadValue;
  std::ranges::fill(bytes, std::uint8_t{0});
  std::ranges::copy(aBytes, bytes.begin());
  Execute(aAddress);
  return CLAccess::Done;
}

bool CLCameraMemory::IsAccepted(const Feature& aFeature, std::span<const std::uint8_t> aBytes) const {
  switch (aFeature.kind) {
  case FeatureKind::Text:
    return true;
  case FeatureKind::Float: {
    // Written so that a value that is no number is refused too.
    const double value = DecodeFloat(aBytes.data());
    return value >= aFeature.minimum && value <= aFeature.maximum;
  }
  case FeatureKind::Enumeration: {
    const std::vector<FeatureEntry> entries = mFeatures.ListEntries(aFeature);
    return std::ranges::find(entries, DecodeInteger(aBytes.data()), &FeatureEntry::value) != entries.end();
  }
  case FeatureKind::Command:
    // The camera's own set cannot be changed.
    return DecodeInteger(aBytes.data()) == 1 && (aFeature.address != clregister::kUserSetSave ||
                                                 GetInteger(clregister::kUserSetSelector) != clregister::kDefaultSet);
  default:
    return IsInRange(aFeature, DecodeInteger(aBytes.data()));
  }
}

bool CLCameraMemory::IsInRange(const Feature& aFeature, std::uint32_t aValue) const {
  const auto minimum = static_cast<std::uint32_t>(aFeature.minimum);
  const std::uint32_t maximum = aFeature.limit.empty() ? static_cast<std::uint32_t>(aFeature.maximum)
                                                       : GetInteger(mFeatures.Find(aFeature.limit)->address) -
                                                             GetInteger(mFeatures.Find(aFeature.limitLess)->address);
  return aValue >= minimum && aValue <= maximum && (aValue - minimum) % aFeature.increment == 0;
}

void CLCameraMemory::Execute(std::uint64_t aCommand) {
  const bool isDefault = GetInteger(clregister::kUserSetSelector) == clregister::kDefaultSet;
  if (aCommand == clregister::kUserSetLoad)
    SetValues(isDefault ? mDefaults : mSaved);
  else if (aCommand == clregister::kUserSetSave)
    mSaved = CopyValues();
}

CLCameraMemory::ValueSet CLCameraMemory::CopyValues() const {
  ValueSet values;
  for (const Feature& feature : mFeatures.List()) {
    if (IsOfSets(feature))
      values[feature.address] = mRegisters.at(feature.address).bytes;
  }
  return values;
}

void CLCameraMemory::SetValues(const ValueSet& aValues) {
  for (const auto& [address, bytes] : aValues)
    mRegisters.at(address).bytes = bytes;
}

} // namespace krtransport
