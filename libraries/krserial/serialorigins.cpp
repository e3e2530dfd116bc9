#include "serialorigins.h"

#include "featurelines.h"

#include <cstdint>
#include <utility>

namespace krserial {

namespace {

// What one map makes of a port: nothing, unless it fits as the first one or the device has something of it.
KrResult AddOrigin(KrGenParameterArray& aArray, const SerialMap& aMap, KrDeviceSerial aPort, bool& aIsOffered,
                   std::vector<KrSerialPortOrigin>& aOrigins) {
  FeatureFinder finder(aArray);
  const bool fits = FindLine(finder, aMap, aPort) != nullptr;
  if (!finder.GetFailure().IsOK())
    return finder.GetFailure();
  if (fits ? aIsOffered : !finder.HasSome())
    return {};
  aIsOffered = aIsOffered || fits;
  aOrigins.push_back({.port = aPort, .map = aMap.name, .missing = finder.GetLacks()});
  return {};
}

} // namespace

KrResult FindSerialOrigins(KrDevice& aDevice, const SerialMaps& aMaps, std::vector<KrSerialPortOrigin>& aOrigins) {
  KrGenParameterArray* array = nullptr;
  const KrResult asked = aDevice.GetParameters(array);
  if (!asked.IsOK() && !IsWithoutFeatures(asked))
    return asked;
  std::vector<KrSerialPortOrigin> origins;
  for (const KrDeviceSerial port : kDeviceSerialPorts) {
    bool isOffered = aDevice.GetByteChannel(static_cast<std::uint32_t>(port)) != nullptr;
    if (isOffered)
      origins.push_back({.port = port, .map = {}, .missing = {}});
    for (const SerialMap& map : aMaps) {
      if (!asked.IsOK() || !map.entries[static_cast<std::size_t>(port)])
        continue;
      if (KrResult added = AddOrigin(*array, map, port, isOffered, origins); !added.IsOK())
        return added;
    }
  }
  aOrigins = std::move(origins);
  return {};
}

} // namespace krserial
