#pragma once
// The GenICam descriptions that a Camera Link camera of the lab carries, as it stores them.

#include "simulation/labclcamera.h"

#include <cstddef>
#include <cstdint>
#include <string>

namespace krtransport {

/// The version of a camera's description by its place in the lab's list: 1.0.0, 1.1.0 and so on.
inline constexpr std::uint32_t kDescriptionMajor = 1;
/// The schema that descriptions follow.
inline constexpr std::uint32_t kSchemaMajor = 1;
inline constexpr std::uint32_t kSchemaMinor = 1;
/// A camera has this many of them at most.
inline constexpr std::size_t kMostDescriptions = 8;

/// The bytes of the description of a place: XML, or a ZIP archive with one. Any thread.
std::string MakeStoredDescription(const LabCLCamera& aCamera, std::size_t aIndex);

} // namespace krtransport
