#include "simulation/registermemory.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstdio>
#include <cstring>

namespace krtransport {

namespace {

constexpr std::uint64_t kAlignment = 4;

struct RefusalName {
  RegisterRefusal refusal;
  const char* name;
};

constexpr std::array<RefusalName, 6> kRefusalNames = {{
    {RegisterRefusal::InvalidParameter, "invalid parameter"},
    {RegisterRefusal::InvalidAddress, "invalid address"},
    {RegisterRefusal::WriteProtect, "write protect"},
    {RegisterRefusal::BadAlignment, "bad alignment"},
    {RegisterRefusal::AccessDenied, "access denied"},
    {RegisterRefusal::LocalProblem, "local problem"},
}};

std::string FormatHex(std::uint64_t aValue) {
  std::array<char, 24> text;
  std::snprintf(text.data(), text.size(), "0x%04llX", static_cast<unsigned long long>(aValue));
  return text.data();
}

KrResult CheckAlignment(std::uint64_t aAddress, std::size_t aLength) {
  if (aAddress % kAlignment == 0 && aLength % kAlignment == 0 && aLength > 0)
    return {};
  return MakeRefusal(RegisterRefusal::BadAlignment, aAddress,
                     "address and length (" + std::to_string(aLength) + ") have to be multiples of 4");
}

} // namespace

KrResult MakeRefusal(RegisterRefusal aRefusal, std::uint64_t aAddress, const KrString& aReason) {
  const auto* name = std::ranges::find(kRefusalNames, aRefusal, &RefusalName::refusal);
  return {KrResult::Code::ProtocolError,
          "The device refuses the access to " + FormatHex(aAddress) + ": " + std::string(name->name) + " (" +
              FormatHex(static_cast<std::uint32_t>(aRefusal)) + "), " + aReason.ToUtf8() + "."};
}

void RegisterMemory::Define(std::uint64_t aAddress, std::size_t aLength, RegisterAccess aAccess,
                            std::string_view aName) {
  mRegisters[aAddress] = {aAccess, std::string(aName), std::vector<std::uint8_t>(aLength)};
}

RegisterMemory::Registers::const_iterator RegisterMemory::FindAt(std::uint64_t aAddress) const {
  const auto next = mRegisters.upper_bound(aAddress);
  if (next == mRegisters.begin())
    return mRegisters.end();
  const auto found = std::prev(next);
  return aAddress - found->first < found->second.bytes.size() ? found : mRegisters.end();
}

KrResult RegisterMemory::Read(std::uint64_t aAddress, void* aData, std::size_t aLength) const {
  KrResult aligned = CheckAlignment(aAddress, aLength);
  if (!aligned.IsOK())
    return aligned;
  auto* out = static_cast<std::uint8_t*>(aData);
  std::uint64_t address = aAddress;
  for (std::size_t remaining = aLength; remaining > 0;) {
    const auto found = FindAt(address);
    if (found == mRegisters.end())
      return MakeRefusal(RegisterRefusal::InvalidAddress, address, "there is no register");
    const Register& source = found->second;
    if (source.access == RegisterAccess::WriteOnly)
      return MakeRefusal(RegisterRefusal::AccessDenied, address, source.name + " can only be written");
    const auto offset = static_cast<std::size_t>(address - found->first);
    const std::size_t piece = std::min(remaining, source.bytes.size() - offset);
    std::memcpy(out, source.bytes.data() + offset, piece);
    out += piece;
    address += piece;
    remaining -= piece;
  }
  return {};
}

KrResult RegisterMemory::CheckWrite(std::uint64_t aAddress, std::size_t aLength) const {
  KrResult aligned = CheckAlignment(aAddress, aLength);
  if (!aligned.IsOK())
    return aligned;
  const auto found = FindAt(aAddress);
  if (found == mRegisters.end())
    return MakeRefusal(RegisterRefusal::InvalidAddress, aAddress, "there is no register");
  const Register& target = found->second;
  if (target.access == RegisterAccess::ReadOnly)
    return MakeRefusal(RegisterRefusal::WriteProtect, aAddress, target.name + " can only be read");
  if (found->first != aAddress || aLength > target.bytes.size())
    return MakeRefusal(RegisterRefusal::InvalidAddress, aAddress,
                       target.name + " is written from its start and takes " + std::to_string(target.bytes.size()) +
                           " bytes");
  return {};
}

KrResult RegisterMemory::Write(std::uint64_t aAddress, const void* aData, std::size_t aLength) {
  KrResult allowed = CheckWrite(aAddress, aLength);
  if (!allowed.IsOK())
    return allowed;
  std::vector<std::uint8_t>& bytes = mRegisters.at(aAddress).bytes;
  // What is shorter than its register is a text; no rest of the former one may stay behind it.
  std::ranges::fill(bytes, std::uint8_t{0});
  std::memcpy(bytes.data(), aData, aLength);
  return {};
}

std::uint32_t RegisterMemory::GetInteger(std::uint64_t aAddress) const {
  return DecodeInteger(mRegisters.at(aAddress).bytes.data());
}

void RegisterMemory::SetInteger(std::uint64_t aAddress, std::uint32_t aValue) {
  EncodeInteger(aValue, mRegisters.at(aAddress).bytes.data());
}

void RegisterMemory::SetLong(std::uint64_t aAddress, std::uint64_t aValue) {
  EncodeLong(aValue, mRegisters.at(aAddress).bytes.data());
}

double RegisterMemory::GetFloat(std::uint64_t aAddress) const {
  return DecodeFloat(mRegisters.at(aAddress).bytes.data());
}

void RegisterMemory::SetFloat(std::uint64_t aAddress, double aValue) {
  EncodeFloat(aValue, mRegisters.at(aAddress).bytes.data());
}

std::string RegisterMemory::GetText(std::uint64_t aAddress) const {
  const std::vector<std::uint8_t>& bytes = mRegisters.at(aAddress).bytes;
  return {bytes.begin(), std::ranges::find(bytes, std::uint8_t{0})};
}

void RegisterMemory::SetText(std::uint64_t aAddress, std::string_view aText) {
  std::vector<std::uint8_t>& bytes = mRegisters.at(aAddress).bytes;
  std::ranges::fill(bytes, std::uint8_t{0});
  std::ranges::copy(aText.substr(0, bytes.size()), bytes.begin());
}

std::uint32_t DecodeInteger(const std::uint8_t* aBytes) {
  std::uint32_t value = 0;
  for (std::size_t i = 0; i < sizeof(value); ++i)
    value = value << 8 | aBytes[i];
  return value;
}

void EncodeInteger(std::uint32_t aValue, std::uint8_t* aBytes) {
  for (std::size_t i = 0; i < sizeof(aValue); ++i)
    aBytes[i] = static_cast<std::uint8_t>(aValue >> (24 - 8 * i));
}

void EncodeLong(std::uint64_t aValue, std::uint8_t* aBytes) {
  EncodeInteger(static_cast<std::uint32_t>(aValue >> 32), aBytes);
  EncodeInteger(static_cast<std::uint32_t>(aValue), aBytes + 4);
}

double DecodeFloat(const std::uint8_t* aBytes) {
  const std::uint64_t bits = std::uint64_t{DecodeInteger(aBytes)} << 32 | DecodeInteger(aBytes + 4);
  return std::bit_cast<double>(bits);
}

void EncodeFloat(double aValue, std::uint8_t* aBytes) {
  EncodeLong(std::bit_cast<std::uint64_t>(aValue), aBytes);
}

} // namespace krtransport
