#pragma once
// Readers of the formats whose samples lie in bytes or words of their own: grey ones, planes, four components a pixel,
// and colours within a word.

#include "pixelreaders.h"

namespace krbuffer {

/// The reader of such a format for the processor's best vector instructions, or null. Any thread.
LineReader FindWordReader(const KrPixelTypeInfo& aFormat);

} // namespace krbuffer
