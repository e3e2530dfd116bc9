#pragma once
// The serial ports of a camera in a lab file.

#include "simulation/lab.h"
#include "simulation/labfile/labmap.h"

namespace krtransport {

/// Takes the keys "serialPorts" and "bulkClock" of a camera. Any thread.
void ReadSerialPorts(LabMap& aMap, LabCamera& aCamera);

} // namespace krtransport
