#pragma once
// The bootstrap registers of a simulated camera, which every GigE Vision device has, and its description's place.

#include "simulation/lab.h"
#include "simulation/registermemory.h"

namespace krtransport {

/// Defines the registers with the values of a camera. Those that are features are left out.
void DefineBootstrapRegisters(RegisterMemory& aMemory, const LabGEVCamera& aCamera);

} // namespace krtransport
