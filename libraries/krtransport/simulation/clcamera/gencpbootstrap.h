#pragma once
// The registers that every GenCP camera has before those of its features (GenCP 1.3.1, bootstrap register map, manifest
// table and serial port registers).

#include "simulation/clcamera/clcameramemory.h"
#include "simulation/labclcamera.h"

#include <cstdint>

namespace krtransport {

namespace gencpregister {

inline constexpr std::uint64_t kHeartbeatTimeout = 0x01E8; ///< ms.
inline constexpr std::uint64_t kDeviceConfiguration = 0x01E0;
inline constexpr std::uint64_t kTimestamp = 0x01F0;
inline constexpr std::uint64_t kTimestampLatch = 0x01F8;
inline constexpr std::uint64_t kAccessPrivilege = 0x0204;
inline constexpr std::uint64_t kCurrentBaudRate = 0x00020004;

} // namespace gencpregister

/// A rate of the standard's and the bit that stands for it.
struct GenCPRate {
  std::uint32_t rate;
  std::uint32_t bit;
};

/// The rate of a bit that a camera has; null for anything else. Any thread.
const GenCPRate* FindGenCPRate(const LabCLCamera& aCamera, std::uint32_t aBit);
/// The rates that the standard knows. Any thread.
std::span<const GenCPRate> ListGenCPRates();

/// Adds the registers to those of the features, with the descriptions.
void DefineGenCPRegisters(CLCameraMemory& aMemory, const LabCLCamera& aCamera);

} // namespace krtransport
