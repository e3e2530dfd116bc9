#pragma once
// When frames are to be expected of a camera, by what it is set to, so that it is not called silent while it does what
// it is told to. How the settings are had is left to the caller.

#include "acquisition/keptsetting.h"

#include <cstdint>
#include <vector>

namespace krviewer {

struct ExpectedFrames {
  KrString trigger = {};        ///< The source of the trigger without which no frame begins; empty where there is none.
  std::uint64_t intervalMs = 0; ///< What a frame takes by exposure and frame rate; 0 where that is not known.
};

/// Of a camera with these settings. Thread: any.
ExpectedFrames ExpectFrames(const std::vector<KeptSetting>& aSettings);
/// Whether a trigger of this source comes from an application by a command.
bool IsSoftwareTrigger(const KrString& aSource);

} // namespace krviewer
