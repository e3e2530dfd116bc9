#pragma once
// The GenICam description of a simulated camera: which features it has and at which registers they are.

#include "simulation/lab.h"

#include <string>

namespace krtransport {

/// The description as XML (GenApi schema 1.1). Its length is a multiple of 4, as registers are read. Any thread.
std::string MakeCameraDescription(const LabCamera& aCamera);

} // namespace krtransport
