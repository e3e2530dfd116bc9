#pragma once
// Readers of luma and chroma in bytes, in every order and colour space of the table. Chroma is the same for all pixels
// of a group. Where a line ends within a group and a part of its chroma is cut off, the chroma of the group before it
// is taken, or none (128) where there is no group before.

#include "pixelreaders.h"

namespace krbuffer {

/// The reader of such a format, or null for others. Any thread.
LineReader FindLumaChromaReader(const KrPixelTypeInfo& aFormat);

} // namespace krbuffer
