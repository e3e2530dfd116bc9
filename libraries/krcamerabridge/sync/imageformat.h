#pragma once
// Size, offsets and pixel format: from a camera's parameters to those of a source of the device. When that is done is
// left to ParameterSync.

#include "krbase/krresult.h"
#include "krbase/krstringlist.h"
#include "krgenicam/krgenparameterarray.h"

#include <array>
#include <cstddef>
#include <functional>
#include <optional>

namespace krcamerabridge {

/// The features that are carried, in the order in which they are set.
inline constexpr std::array kCarriedFeatures = {"PixelFormat", "Width", "Height", "OffsetX", "OffsetY"};

/// Their values as text; none of a feature that there is not.
using ImageFormat = std::array<std::optional<KrString>, kCarriedFeatures.size()>;

/// Asks a camera. Fails with the first that it could not be asked for.
KrResult ReadImageFormat(KrGenParameterArray& aCamera, ImageFormat& aFormat);

/// Sets the features of the device's source (of the selected one where it is empty) that are others, the offsets to
/// their least value first, so that any size fits that the device can have. The selector is put back, unless the device
/// has another one selected by then. No other thread's operation on the device's parameters comes between. aProblems
/// gets a sentence for everything that could not be done; what can be done is, as long as the device answers. False
/// when aMayGoOn, which is asked before each setting, ended it; it waits for nobody that may use these parameters.
bool CarryImageFormat(const ImageFormat& aFormat, KrGenParameterArray& aDevice, const KrString& aSource,
                      const std::function<bool()>& aMayGoOn, KrStringList& aProblems);

} // namespace krcamerabridge
