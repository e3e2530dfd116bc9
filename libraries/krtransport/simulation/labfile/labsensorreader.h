#pragma once
// Takes the sensor of a camera from a lab file.

#include "simulation/labfile/labmap.h"
#include "simulation/labsensor.h"

namespace krtransport {

/// Takes the key "sensor"; without it the sensor stays as it is.
void ReadSensor(LabMap& aMap, LabSensor& aSensor);

} // namespace krtransport
