#pragma once
// The value of a feature in its three shapes: as the user sees it, as the camera has it, and as the bytes of the
// register that stands for it in the description.

#include "camerafile/filemodel.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

namespace krcamerabridge {

/// Where the register of a feature is: each has its own block.
inline constexpr std::uint64_t kRegisterStride = 0x1000;

/// Any thread, as all functions here.
std::uint64_t GetRegisterAddress(std::size_t aFeatureIndex);
std::size_t GetRegisterLength(const FileFeature& aFeature);

/// Writes a value as the user sees it into a register of the feature's length, in the order of little-endian machines.
void ToRegister(const FileFeature& aFeature, const WireValue& aShown, std::span<std::uint8_t> aBytes);
WireValue FromRegister(const FileFeature& aFeature, std::span<const std::uint8_t> aBytes);

/// The camera's value for one that the user sees, in a format; nothing where there is none.
std::optional<WireValue> ToWire(const FileFeature& aFeature, const WireValue& aShown, const WireFormat& aFormat);
/// What the user sees for the camera's value; nothing where it is none of the feature's.
std::optional<WireValue> FromWire(const FileFeature& aFeature, const WireValue& aWire);

} // namespace krcamerabridge
