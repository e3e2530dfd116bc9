#pragma once
// A camera's region of interest as its features have it: Width, Height, and where there are any OffsetX and OffsetY,
// WidthMax and HeightMax. What a region may be is left to the rules, when it is set to the editor.

#include "krgenicam/krgenparameterarray.h"
#include "region/regionrules.h"

#include <string>

namespace krviewer {

/// Reads the limits of the moment. NotSupported for a camera without Width or Height, BadData for values that no camera
/// can mean, otherwise what the camera says.
KrResult ReadRegion(KrGenParameterArray& aParameters, RegionLimits& aLimits);

/// Sets a region, in an order in which each step is valid; the stream must not run, as sizes are locked else. What the
/// camera refuses is told, and the region that it had before is set again, or what stands against that is told, too.
KrResult WriteRegion(KrGenParameterArray& aParameters, const Region& aRegion);
/// The same with the largest region that the camera has.
KrResult WriteFullRegion(KrGenParameterArray& aParameters);

/// For example "640 x 480 at 16, 8".
std::string FormatRegion(const Region& aRegion);

} // namespace krviewer
