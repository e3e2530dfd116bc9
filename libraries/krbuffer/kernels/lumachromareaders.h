#pragma once
// Readers of luma and chroma in bytes that use vector instructions.

#include "pixelreaders.h"

namespace krbuffer {

/// The reader of such a format for the processor's best vector instructions, or null. Any thread.
LineReader FindLumaChromaVectorReader(const KrPixelTypeInfo& aFormat);

} // namespace krbuffer
