#pragma once
// An image as the windows show it, in as few 8-bit samples as that takes. The files' writers put a format around it.

#include "krbase/krresult.h"
#include "krbuffer/krbuffer.h"

#include <cstdint>

namespace krapps {

/// True for formats that are shown in grey.
bool IsShownGrey(KrPixelType aType);

/// Converts for showing and packs the result: one byte a pixel (Mono8) for what is shown grey, otherwise red, green,
/// blue (RGB8). Results as KrBufferConverter::Convert.
KrResult MakeShownImage(const IKrImage& aImage, KrBuffer& aShown);

} // namespace krapps
