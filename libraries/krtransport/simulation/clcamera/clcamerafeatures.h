#pragma once
// The features that all Camera Link cameras of the lab have, whatever they speak, and where their registers are.

#include "simulation/featuretable.h"

#include <cstdint>
#include <span>

namespace krtransport {

namespace clregister {

// What the camera is: texts of 64 bytes, where GenCP 1.3 has them.
inline constexpr std::uint64_t kManufacturerName = 0x0004;
inline constexpr std::uint64_t kModelName = 0x0044;
inline constexpr std::uint64_t kFamilyName = 0x0084;
inline constexpr std::uint64_t kDeviceVersion = 0x00C4;
inline constexpr std::uint64_t kManufacturerInfo = 0x0104;
inline constexpr std::uint64_t kSerialNumber = 0x0144;
inline constexpr std::uint64_t kUserDefinedName = 0x0184;
inline constexpr std::size_t kTextBytes = 64;

// Sets of values; all other features are where cameraregisters.h has them.
inline constexpr std::uint64_t kUserSetSelector = 0x00010400;
inline constexpr std::uint64_t kUserSetLoad = 0x00010404;
inline constexpr std::uint64_t kUserSetSave = 0x00010408;

inline constexpr std::uint32_t kDefaultSet = 0;
inline constexpr std::uint32_t kUserSet0 = 1;

} // namespace clregister

/// The table, in the order of the description. Any thread.
std::span<const Feature> ListCLCameraFeatures();

} // namespace krtransport
