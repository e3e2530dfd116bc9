#pragma once
// The serial ports of a camera in a lab file.

#include "simulation/lab.h"
#include "simulation/labfile/labmap.h"

#include <cstdint>
#include <vector>

namespace krtransport {

/// Takes the key "rates"; without it the rates stay as they are. False, and a problem, for one that is none. Any
/// thread.
bool ReadRateList(LabMap& aMap, std::vector<std::uint32_t>& aRates);
/// Takes the keys "serialPorts" and "bulkClock" of a camera, whose frame grabber was taken. Any
/// thread.
void ReadSerialPorts(LabMap& aMap, LabCamera& aCamera);

} // namespace krtransport
