#pragma once
// By which technology a device is connected, as features say it: names of the GenTL standard's enumerations (SFNC,
// DeviceType and StreamType), with numbers of our own. What each name means for people is left to the feature.

#include "krsystem/hostfeature.h"
#include "krsystem/krdeviceinfo.h"

#include <array>
#include <cstdint>
#include <string_view>

namespace krdevice {

/// The number of a device's technology.
constexpr std::int64_t GetTechnologyNumber(KrDeviceInfoType aType) {
  if (aType == KrDeviceInfoType::GEV)
    return 0;
  return aType == KrDeviceInfoType::U3V ? 1 : 2;
}

/// The entries of an enumeration, of which each tip says what the technology means there.
constexpr std::array<krsystem::HostFeatureEntry, 3>
MakeTechnologyEntries(std::string_view aGigEVision, std::string_view aUSB3Vision, std::string_view aCustom) {
  return {{{"GigEVision", aGigEVision, 0}, {"USB3Vision", aUSB3Vision, 1}, {"Custom", aCustom, 2}}};
}

} // namespace krdevice
