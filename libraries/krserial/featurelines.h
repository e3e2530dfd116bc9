#pragma once
// From a map and a port to the line behind it, whichever way the map goes, where a device has all of its features.

#include "featurefinder.h"
#include "ifeatureline.h"
#include "serialmap.h"

#include <memory>

namespace krserial {

/// The line of a port that the map has; null where the device lacks something, which the finder has noted.
std::unique_ptr<IFeatureLine> FindLine(FeatureFinder& aFinder, const SerialMap& aMap, KrDeviceSerial aPort);
/// Whether a device that was asked for its features with this result has none at all: its description is not any good,
/// or there is none.
bool IsWithoutFeatures(const KrResult& aAsked);

} // namespace krserial
