#pragma once
// The features that all simulated cameras have, in one table, from which registers, their rules and the description are
// all made. Those that a camera has besides are left to CameraFeatures, what a value leads to to CameraMemory.

#include "krbuffer/krpixeltype.h"
#include "simulation/registermemory.h"

#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

namespace krtransport {

enum class FeatureKind { Text, Integer, Float, Boolean, Enumeration, Command };

/// One value of an enumeration.
struct FeatureEntry {
  std::string_view name;
  std::string_view tip;
  std::uint32_t value = 0;
  std::uint32_t positions = ~0U; ///< The positions of the feature's selector in which it is there, a bit for each.
};

/// One feature. Where a selector is named, each of the selector's entries has a register of its own: that of the entry
/// of value i lies i times the stride behind the address.
struct Feature {
  std::string_view name;
  std::string_view category;
  FeatureKind kind = FeatureKind::Integer;
  std::uint64_t address = 0;
  std::string_view tip;
  RegisterAccess access = RegisterAccess::ReadWrite;
  std::size_t length = 4; ///< Bytes of the register.
  std::string_view visibility = "Beginner";
  bool isStandard = true;                  ///< Whether the name is one of the standard's (SFNC).
  bool isLocked = false;                   ///< Not writable while a stream runs.
  bool isVolatile = false;                 ///< Changes by itself.
  double minimum = 0;                      ///< Of integers and floats that can be written.
  double maximum = 0;                      ///< The same.
  std::uint32_t increment = 1;             ///< Of integers.
  std::string_view limit = {};             ///< The feature whose value is the maximum instead, …
  std::string_view limitLess = {};         ///< … less the value of this one.
  double start = 0;                        ///< The value at the start, unless the lab says another.
  std::string_view unit = {};              ///< Of integers and floats.
  std::string_view representation = {};    ///< The same.
  std::span<const FeatureEntry> entries{}; ///< Of an enumeration; those of PixelFormat are the camera's.
  std::string_view selector = {};
  std::uint32_t stride = 0;
  std::string_view inquiry = {};      ///< The feature whose value, where it is 0, tells that the camera lacks this one.
  std::string_view prerequisite = {}; ///< The feature that has to have a value for this one to be available …
  std::uint32_t requiredValue = 1;    ///< … and the value.
  std::span<const std::string_view> dependsOn{}; ///< Features whose writing changes the value.
};

/// The table, in the order of the description. Any thread.
std::span<const Feature> ListFeatures();
/// The feature of a name, or null. Any thread.
const Feature* FindFeature(std::string_view aName);
/// The entries of an enumeration of a camera with these pixel formats. Any thread.
std::vector<FeatureEntry> ListEntries(const Feature& aFeature, std::span<const KrPixelType> aPixelFormats);

} // namespace krtransport
