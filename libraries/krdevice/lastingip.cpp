#include "lastingip.h"

#include "krsystem/ipv4address.h"

#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <utility>

namespace krdevice {
namespace {

// A device writes its lasting memory before it acknowledges.
constexpr std::uint32_t kAccessTimeoutMs = 3000;

constexpr std::uint64_t kOptionsRegister = 0x0010;
constexpr std::uint64_t kCurrentRegister = 0x0014;
constexpr std::uint64_t kAddressRegister = 0x064C;
constexpr std::uint64_t kMaskRegister = 0x065C;
constexpr std::uint64_t kGatewayRegister = 0x066C;

constexpr std::uint32_t kPersistentBit = 1u << 0;
constexpr std::uint32_t kDhcpBit = 1u << 1;
constexpr std::uint32_t kLinkLocalBit = 1u << 2;
// The other bits of the current configuration are no business of addresses: flow control is among them.
constexpr std::uint32_t kWayBits = kPersistentBit | kDhcpBit | kLinkLocalBit;

struct WayName {
  std::uint32_t bit;
  const char* name;
};

constexpr WayName kWayNames[] = {
    {kPersistentBit, "a persistent address"}, {kDhcpBit, "DHCP"}, {kLinkLocalBit, "link-local addresses"}};

KrResult Explain(const KrString& aAttempt, const KrResult& aReason) {
  return {aReason.GetCode(), aAttempt + " failed. " + aReason.GetDescription()};
}

KrResult ReadRegister(IKrRegisterPort& aPort, std::uint64_t aAddress, std::uint32_t& aValue) {
  std::array<std::uint8_t, 4> bytes{};
  const KrResult result = aPort.Read(aAddress, bytes.data(), bytes.size(), kAccessTimeoutMs);
  if (!result.IsOK())
    return Explain("Reading how the device gets its address", result);
  aValue = 0;
  for (const std::uint8_t byte : bytes)
    aValue = aValue << 8 | byte;
  return {};
}

KrResult WriteRegister(IKrRegisterPort& aPort, std::uint64_t aAddress, std::uint32_t aValue) {
  std::array<std::uint8_t, 4> bytes{};
  for (std::size_t i = 0; i < bytes.size(); ++i)
    bytes[i] = static_cast<std::uint8_t>(aValue >> (24 - 8 * i));
  return aPort.Write(aAddress, bytes.data(), bytes.size(), kAccessTimeoutMs);
}

// What the registers hold.
struct RegisterValues {
  std::uint32_t options = 0;
  std::uint32_t current = 0;
  std::uint32_t address = 0;
  std::uint32_t mask = 0;
  std::uint32_t gateway = 0;
  friend bool operator==(const RegisterValues&, const RegisterValues&) = default;
};

bool HasSameAddresses(const RegisterValues& aOne, const RegisterValues& aOther) {
  return aOne.address == aOther.address && aOne.mask == aOther.mask && aOne.gateway == aOther.gateway;
}

// The addresses of a device that keeps none stay 0: their registers are not there.
KrResult ReadAll(IKrRegisterPort& aPort, RegisterValues& aValues) {
  RegisterValues values;
  KrResult result = ReadRegister(aPort, kOptionsRegister, values.options);
  if (result.IsOK())
    result = ReadRegister(aPort, kCurrentRegister, values.current);
  const std::pair<std::uint64_t, std::uint32_t*> addresses[] = {
      {kAddressRegister, &values.address}, {kMaskRegister, &values.mask}, {kGatewayRegister, &values.gateway}};
  for (const auto& [address, value] : addresses)
    if (result.IsOK() && (values.options & kPersistentBit) != 0)
      result = ReadRegister(aPort, address, *value);
  if (result.IsOK())
    aValues = values;
  return result;
}

KrResult ParseText(const char* aMeaning, const KrString& aText, std::uint32_t& aAddress) {
  const std::optional<std::uint32_t> address = krsystem::ParseIPv4(aText);
  if (!address)
    return {KrResult::Code::InvalidInput, "Setting how the device gets its address: the " + KrString(aMeaning) + " \"" +
                                              aText + "\" is no IPv4 address; write four numbers, as in 192.168.1.20."};
  aAddress = *address;
  return {};
}

KrResult ParseTexts(const KrLastingIPConfiguration& aConfiguration, RegisterValues& aValues) {
  KrResult result = ParseText("address", aConfiguration.address, aValues.address);
  if (result.IsOK())
    result = ParseText("subnet mask", aConfiguration.subnetMask, aValues.mask);
  if (result.IsOK())
    result = ParseText("gateway", aConfiguration.gateway, aValues.gateway);
  return result;
}

std::uint32_t GetWays(const KrLastingIPConfiguration& aConfiguration) {
  return (aConfiguration.persistent ? kPersistentBit : 0) | (aConfiguration.dhcp ? kDhcpBit : 0) |
         (aConfiguration.linkLocal ? kLinkLocalBit : 0);
}

// What a device without an address of its own would have to keep is no more possible than the way itself.
KrResult CheckOptions(const RegisterValues& aWanted, std::uint32_t aOptions) {
  const bool hasAddress = (aWanted.address | aWanted.mask | aWanted.gateway) != 0;
  const std::uint32_t wanted = (aWanted.current & kWayBits) | (hasAddress ? kPersistentBit : 0);
  for (const WayName& way : kWayNames)
    if ((wanted & way.bit) != 0 && (aOptions & way.bit) == 0)
      return {KrResult::Code::NotSupported,
              "The device does not offer " + KrString(way.name) + ". Its configuration stays as it is."};
  return {};
}

KrResult RefuseAddress(const char* aMeaning, std::uint32_t aAddress, const char* aReason) {
  return {KrResult::Code::InvalidInput, "Setting how the device gets its address: the " + KrString(aMeaning) + " " +
                                            krsystem::FormatIPv4(aAddress) + " " + aReason +
                                            " The device's configuration stays as it is."};
}

// Whether no host at all can have the address: this network (0/8), this host (127/8), many hosts (224/4), none (240/4).
bool IsNobodys(std::uint32_t aAddress) {
  const std::uint32_t firstField = aAddress >> 24;
  return firstField == 0 || firstField == 127 || firstField >= 224;
}

// Zeros stand for an address that is not kept, unless it counts.
KrResult CheckAddresses(const RegisterValues& aWanted) {
  if (!krsystem::IsContiguousMask(aWanted.mask))
    return RefuseAddress("subnet mask", aWanted.mask, "has a gap: its ones come first, then its zeros.");
  if (aWanted.gateway != 0 && IsNobodys(aWanted.gateway))
    return RefuseAddress("gateway", aWanted.gateway, "cannot be the address of a router.");
  const bool counts = (aWanted.current & kPersistentBit) != 0;
  if (aWanted.address == 0 && !counts)
    return {};
  if (IsNobodys(aWanted.address))
    return RefuseAddress("address", aWanted.address, "cannot be the address of a device.");
  if (!krsystem::IsForDevice(aWanted.address, aWanted.mask))
    return RefuseAddress("address", aWanted.address, "is that of its subnet itself or its broadcast address.");
  return {};
}

struct RegisterChange {
  std::uint64_t address;
  std::uint32_t before;
  std::uint32_t after;
};

// Puts back, in the reverse order, what the first aCount changes may have written; says nothing where that is nothing.
KrString PutBack(IKrRegisterPort& aPort, std::span<const RegisterChange> aChanges, std::size_t aCount) {
  bool isWritten = false;
  bool isBack = true;
  for (std::size_t i = aCount; i-- > 0;) {
    if (aChanges[i].before == aChanges[i].after)
      continue;
    isWritten = true;
    isBack = WriteRegister(aPort, aChanges[i].address, aChanges[i].before).IsOK() && isBack;
  }
  if (!isWritten)
    return {};
  return isBack ? " What was written before was put back."
                : " What was written before could not all be put back: look what the device holds now.";
}

KrResult CompareReadBack(IKrRegisterPort& aPort, const RegisterValues& aWanted) {
  RegisterValues now;
  if (KrResult result = ReadAll(aPort, now); !result.IsOK())
    return result;
  if (now == aWanted)
    return {};
  return {KrResult::Code::ProtocolError,
          "The device acknowledged another way to get its address and keeps something else."};
}

} // namespace

KrResult ReadLastingIP(IKrRegisterPort& aPort, KrLastingIPConfiguration& aConfiguration) {
  RegisterValues values;
  if (KrResult result = ReadAll(aPort, values); !result.IsOK())
    return result;
  aConfiguration.persistent = (values.current & kPersistentBit) != 0;
  aConfiguration.dhcp = (values.current & kDhcpBit) != 0;
  aConfiguration.linkLocal = (values.current & kLinkLocalBit) != 0;
  aConfiguration.address = krsystem::FormatIPv4(values.address);
  aConfiguration.subnetMask = krsystem::FormatIPv4(values.mask);
  aConfiguration.gateway = krsystem::FormatIPv4(values.gateway);
  return {};
}

KrResult WriteLastingIP(IKrRegisterPort& aPort, const KrLastingIPConfiguration& aConfiguration) {
  RegisterValues wanted;
  if (KrResult result = ParseTexts(aConfiguration, wanted); !result.IsOK())
    return result;
  RegisterValues before;
  if (KrResult result = ReadAll(aPort, before); !result.IsOK())
    return result;
  wanted.options = before.options;
  wanted.current = (before.current & ~kWayBits) | GetWays(aConfiguration);
  if (KrResult result = CheckOptions(wanted, before.options); !result.IsOK())
    return result;
  // What the device holds already and does not use may be as it is.
  if (aConfiguration.persistent || !HasSameAddresses(wanted, before))
    if (KrResult result = CheckAddresses(wanted); !result.IsOK())
      return result;
  // The ways come last: no way to an address that is not whole yet is ever switched on.
  const RegisterChange changes[] = {{kAddressRegister, before.address, wanted.address},
                                    {kMaskRegister, before.mask, wanted.mask},
                                    {kGatewayRegister, before.gateway, wanted.gateway},
                                    {kCurrentRegister, before.current, wanted.current}};
  for (std::size_t i = 0; i < std::size(changes); ++i) {
    if (changes[i].before == changes[i].after)
      continue;
    const KrResult written = WriteRegister(aPort, changes[i].address, changes[i].after);
    if (written.IsOK())
      continue;
    // A write that failed otherwise than by refusal may have reached the device.
    const std::size_t mayBeWritten = written == KrResult::Code::AccessDenied ? i : i + 1;
    return {written.GetCode(), "Writing how the device gets its address failed. " + written.GetDescription() +
                                   PutBack(aPort, changes, mayBeWritten)};
  }
  const KrResult compared = CompareReadBack(aPort, wanted);
  if (!compared.IsOK())
    return {compared.GetCode(), compared.GetDescription() + PutBack(aPort, changes, std::size(changes))};
  return {};
}

} // namespace krdevice
