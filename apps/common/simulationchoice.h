#pragma once
// Which camera of the simulated lab is shown to somebody who wants just any. Offering the lab, and opening the camera,
// are left to the programs.

#include "krbase/krresult.h"
#include "krbase/krstring.h"

namespace krapps {

/// Gives the unique ID of the lab's first camera that can be reached and that nobody holds; where all are held, of the
/// first that can be reached. NotFound where there is none, or no lab was installed. Asks simulated devices alone, so
/// that it takes a moment only. Any thread.
KrResult FindSimulatedCamera(KrString& aUniqueID);

} // namespace krapps
