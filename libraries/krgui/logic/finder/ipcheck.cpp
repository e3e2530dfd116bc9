#include "logic/finder/ipcheck.h"

#include "krsystem/ipv4address.h"

#include <algorithm>
#include <cstdlib>

namespace krgui {

namespace {

constexpr int kFields = 4;
constexpr unsigned kBitsPerField = 8;
constexpr std::uint32_t kFieldMask = 0xFF;
constexpr std::uint32_t kFirstMulticastField = 224;

constexpr const char* kMulticast = "IP addresses in the 224.*.*.* to 255.*.*.* range cannot be assigned to a device.";

std::uint32_t GetFirstField(std::uint32_t aAddress) {
  return aAddress >> ((kFields - 1) * kBitsPerField);
}

std::uint32_t GetLastField(std::uint32_t aAddress) {
  return aAddress & kFieldMask;
}

/// The adapter's values as numbers; the device's gateway stands for a text that does not parse.
struct Adapter {
  std::uint32_t address;
  std::uint32_t mask;
  bool IsSameSubnet(std::uint32_t aAddress) const { return (mask & aAddress) == (mask & address); }
};

Adapter ParseAdapter(const IPValues& aValues) {
  return {ParseDotted(aValues.adapterAddress).value_or(aValues.deviceGateway),
          ParseDotted(aValues.adapterMask).value_or(aValues.deviceGateway)};
}

KrString CheckAddress(std::uint32_t aAddress, const Adapter& aAdapter, const std::vector<std::uint32_t>& aTaken) {
  if (GetFirstField(aAddress) >= kFirstMulticastField) {
    return kMulticast;
  }
  if (!aAdapter.IsSameSubnet(aAddress)) {
    return "Device IP Address does not match Interface Subnet.";
  }
  if (GetLastField(aAddress) == 0 || GetLastField(aAddress) == kFieldMask) {
    return "IP addresses ending by 0 or 255 are invalid.";
  }
  if (aAddress == aAdapter.address) {
    return "The IP Address cannot be the same as the Interface!";
  }
  if (std::find(aTaken.begin(), aTaken.end(), aAddress) != aTaken.end()) {
    return "Another device has this IP Address.";
  }
  return {};
}

KrString CheckMask(std::uint32_t aMask, const Adapter& aAdapter) {
  if (aMask != 0 && aMask != aAdapter.mask) {
    return "Device Subnet Mask should match Interface Subnet Mask.";
  }
  if (!krsystem::IsContiguousMask(aMask)) {
    return "Invalid subnet mask.";
  }
  return {};
}

KrString CheckGateway(std::uint32_t aGateway, const Adapter& aAdapter) {
  if (aGateway != 0 && !aAdapter.IsSameSubnet(aGateway)) {
    return "Device Gateway does not match Interface Subnet.";
  }
  return {};
}

} // namespace

std::optional<std::uint32_t> ParseDotted(const KrString& aText) {
  const char* position = aText.CStr();
  std::uint32_t address = 0;
  for (int field = 0; field < kFields; ++field) {
    if (field > 0 && *position++ != '.') {
      return std::nullopt;
    }
    // With base 0 it reads as the pattern's fields do: blanks before, a sign, octal and hexadecimal numbers.
    char* end = nullptr;
    const long long value = std::strtoll(position, &end, 0);
    if (end == position) {
      return std::nullopt;
    }
    address = (address << kBitsPerField) | (static_cast<std::uint32_t>(value) & kFieldMask);
    position = end;
  }
  return address;
}

IPIndicators CheckIPValues(const IPValues& aValues) {
  const Adapter adapter = ParseAdapter(aValues);
  return {CheckAddress(aValues.deviceAddress, adapter, aValues.takenAddresses), CheckMask(aValues.deviceMask, adapter),
          CheckGateway(aValues.deviceGateway, adapter)};
}

KrString FindHardIPError(const IPValues& aValues) {
  if (krsystem::FormatIPv4(aValues.deviceAddress) == aValues.adapterAddress) {
    return "Cannot assign the same IP Address as the Interface!";
  }
  if (GetFirstField(aValues.deviceAddress) >= kFirstMulticastField) {
    return kMulticast;
  }
  if ((aValues.deviceAddress & aValues.deviceMask) == aValues.deviceAddress) {
    return "Cannot assign the device IP Address to be the same as its subnet!";
  }
  return {};
}

IPProposal ProposeIPAddress(const KrString& aAdapterAddress, const KrString& aAdapterMask) {
  const std::uint32_t mask = ParseDotted(aAdapterMask).value_or(0);
  IPProposal proposal = {ParseDotted(aAdapterAddress).value_or(0) & mask, 0};
  for (std::uint32_t rest = mask; proposal.emptyFields < kFields && GetLastField(rest) == 0; rest >>= kBitsPerField) {
    ++proposal.emptyFields;
  }
  return proposal;
}

} // namespace krgui
