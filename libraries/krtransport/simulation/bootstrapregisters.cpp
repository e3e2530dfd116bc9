#include "simulation/bootstrapregisters.h"

#include "krsystem/ipv4address.h"
#include "krsystem/macaddress.h"
#include "simulation/cameradescription.h"
#include "simulation/cameraregisters.h"

#include <array>
#include <cstdio>

namespace krtransport {

using namespace cameraregister;

namespace {

constexpr std::uint32_t kBigEndianUtf8 = 0x80000001;
constexpr std::uint32_t kClassShift = 28;
constexpr std::uint32_t kLinkSpeedMbit = 1000;
// Writing of memory, serial number and user-defined name are offered (GigE Vision 2.x, GVCP capability register).
constexpr std::uint32_t kCapabilities = 1u << 1 | 1u << 30 | 1u << 31;
constexpr std::size_t kURLLength = 512;

// Parts of the bootstrap area that the standard reserves; they read as zeros.
struct ReservedRange {
  std::uint64_t address;
  std::size_t length;
};
constexpr std::array<ReservedRange, 4> kReserved = {{{0x0018, 12}, {0x0028, 12}, {0x0038, 12}, {0x00F8, 264}}};

std::uint64_t ReadMAC(const KrString& aText) {
  std::uint64_t address = 0;
  for (const std::uint8_t byte : krsystem::ParseMAC(aText).value_or(krsystem::MACAddress{}))
    address = address << 8 | byte;
  return address;
}

std::string MakeURL(const LabCamera& aCamera, std::size_t aLength) {
  std::string name = aCamera.modelName.ToUtf8();
  std::erase(name, ' ');
  std::array<char, 64> place;
  std::snprintf(place.data(), place.size(), ".xml;%llx;%zx", static_cast<unsigned long long>(kDescription), aLength);
  return "Local:" + name + place.data();
}

void DefineDescription(RegisterMemory& aMemory, const LabCamera& aCamera) {
  const std::string description = MakeCameraDescription(aCamera);
  aMemory.Define(kDescription, description.size(), RegisterAccess::ReadOnly, "the description");
  aMemory.SetText(kDescription, description);
  aMemory.Define(kFirstURL, kURLLength, RegisterAccess::ReadOnly, "the first URL");
  aMemory.SetText(kFirstURL, MakeURL(aCamera, description.size()));
  aMemory.Define(kSecondURL, kURLLength, RegisterAccess::ReadOnly, "the second URL");
}

std::uint32_t ParseEither(const KrString& aText, const KrString& aOtherwise) {
  return krsystem::ParseIPv4(aText.IsEmpty() ? aOtherwise : aText).value_or(0);
}

// What a camera keeps for its next start (GigE Vision 2.x, network interface configuration and persistent address).
void DefineLastingConfiguration(RegisterMemory& aMemory, const LabGEVCamera& aCamera) {
  const auto define = [&aMemory](std::uint64_t aAddress, const char* aName, std::uint32_t aValue) {
    aMemory.Define(aAddress, sizeof(aValue), RegisterAccess::ReadWrite, aName);
    aMemory.SetInteger(aAddress, aValue);
  };
  define(kIPConfigCurrent, "the current IP configuration", aCamera.ipConfigCurrent | kLinkLocal);
  define(kPersistentAddress, "the persistent IP address", ParseEither(aCamera.persistentAddress, aCamera.ipAddress));
  define(kPersistentMask, "the persistent subnet mask", ParseEither(aCamera.persistentMask, aCamera.subnetMask));
  define(kPersistentGateway, "the persistent gateway", ParseEither(aCamera.persistentGateway, aCamera.defaultGateway));
}

} // namespace

void DefineBootstrapRegisters(RegisterMemory& aMemory, const LabGEVCamera& aCamera) {
  const std::uint64_t mac = ReadMAC(aCamera.macAddress);
  const auto define = [&aMemory](std::uint64_t aAddress, const char* aName, std::uint32_t aValue) {
    aMemory.Define(aAddress, sizeof(aValue), RegisterAccess::ReadOnly, aName);
    aMemory.SetInteger(aAddress, aValue);
  };
  for (const ReservedRange& range : kReserved)
    aMemory.Define(range.address, range.length, RegisterAccess::ReadOnly, "a reserved range");
  define(kVersion, "the version", aCamera.gevVersion);
  define(kDeviceMode, "the device mode", kBigEndianUtf8 | aCamera.deviceClass << kClassShift);
  define(kMACHigh, "the MAC address", static_cast<std::uint32_t>(mac >> 32));
  define(kMACLow, "the MAC address", static_cast<std::uint32_t>(mac));
  define(kIPConfigOptions, "the IP configuration options", aCamera.ipConfigOptions);
  define(kIPAddress, "the IP address", krsystem::ParseIPv4(aCamera.ipAddress).value_or(0));
  define(kSubnetMask, "the subnet mask", krsystem::ParseIPv4(aCamera.subnetMask).value_or(0));
  define(kDefaultGateway, "the default gateway", krsystem::ParseIPv4(aCamera.defaultGateway).value_or(0));
  define(kInterfaceCount, "the number of interfaces", 1);
  define(kLinkSpeed, "the link speed", kLinkSpeedMbit);
  define(kMessageChannelCount, "the number of message channels", 0);
  define(kStreamChannelCount, "the number of stream channels", 1);
  define(kGVCPCapability, "the capabilities", kCapabilities);
  define(kControlPrivilege, "the control privilege", 0);
  DefineLastingConfiguration(aMemory, aCamera);
  DefineDescription(aMemory, aCamera);
}

} // namespace krtransport
