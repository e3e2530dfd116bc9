#pragma once
// Readers of the formats whose pixels have to be gathered from bytes in a rhythm of their own: packed grey samples, and
// three components a pixel.

#include "pixelreaders.h"

namespace krbuffer {

/// The reader of such a format for the processor's best vector instructions, or null. Any thread.
LineReader FindPackedReader(const KrPixelTypeInfo& aFormat);

} // namespace krbuffer
