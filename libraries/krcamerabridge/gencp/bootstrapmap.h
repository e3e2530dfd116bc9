#pragma once
// Where a GenCP camera has its bootstrap registers (GenCP 1.3.1, technology agnostic and serial port register maps).

#include <cstddef>
#include <cstdint>

namespace krcamerabridge {

struct BootstrapRegister {
  std::uint64_t address;
  std::size_t bytes;
};

constexpr BootstrapRegister kVersionRegister{0x0000, 4}; // Major number in the upper half.
constexpr BootstrapRegister kCapabilityRegister{0x01C4, 8};
constexpr BootstrapRegister kResponseTimeRegister{0x01CC, 4}; // Milliseconds.
constexpr BootstrapRegister kManifestAddressRegister{0x01D0, 8};
constexpr BootstrapRegister kSerialMapAddressRegister{0x01D8, 8};
constexpr BootstrapRegister kConfigurationRegister{0x01E0, 8};
constexpr BootstrapRegister kHeartbeatTimeoutRegister{0x01E8, 4}; // Milliseconds.
constexpr BootstrapRegister kAccessPrivilegeRegister{0x0204, 4};

constexpr std::uint64_t kHasAccessPrivilege = 1u << 1; // Of the capabilities; with it there is a heartbeat.
constexpr std::uint64_t kHasSerialMap = 1u << 9;
constexpr std::uint64_t kIsHeartbeatOn = 1u << 0; // Of the configuration.

constexpr std::uint64_t kPrivilegeMask = 7;
constexpr std::uint64_t kAvailable = 0;
constexpr std::uint64_t kOpenExclusive = 1;

// From the serial map's address on.
constexpr std::uint64_t kSupportedRatesOffset = 0;
constexpr std::uint64_t kCurrentRateOffset = 4;

} // namespace krcamerabridge
