#pragma once
// Values of features as people read and write them: numbers as the description wants them shown, entries by name, and
// why a value or range cannot be had. Where the texts go is left to the commands.

#include "krgenicam/krgenparameter.h"

#include <cstdint>
#include <string>

namespace krtool {

/// A whole number in decimal, in hexadecimal digits behind 0x, or as an IPv4 or MAC address; as a MAC address its low
/// 48 bits, as an IPv4 address its low 32 bits where no others are set.
std::string FormatInteger(std::int64_t aValue, KrGenRepresentation aRepresentation);

/// What a feature has, each as text, in one line; empty where there is no such.
struct FeatureState {
  std::string value;
  std::string unit;
  std::string minimum;
  std::string maximum;
  std::string increment;
  std::string error; ///< Why the value, or else the range, cannot be had; empty too where there is none by nature.
};

/// The value as text in one line; bytes as hexadecimal digits. Results as the parameter's own operations.
KrResult ReadValueText(KrGenParameter& aParameter, std::string& aText);

/// All that can be read of a feature whose access is aAccess. Bytes of registers are not read; the error says what
/// keeps them from being read before the device is asked for them.
FeatureState ReadState(KrGenParameter& aParameter, KrGenAccessMode aAccess);

/// Sets a feature to what a user wrote: addresses where it is shown as one, otherwise as KrGenParameter::FromString.
KrResult WriteValueText(KrGenParameter& aParameter, const std::string& aText);

} // namespace krtool
