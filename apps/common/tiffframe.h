#pragma once
// A frame as TIFF: the camera's own values, one sample in 8, 16, 32 or 64 bits; what has no such form, as it is shown.

#include "framefile.h"
#include "krbase/kratomicfile.h"

namespace krapps {

/// True for the formats whose samples a TIFF holds bit for bit.
bool HasTiffForm(KrPixelType aType);

/// Writes the frame, which holds an image, into a file that is open. Results as WriteFrame.
KrResult WriteTiff(const KrBuffer& aFrame, const FrameFileOptions& aOptions, KrAtomicFile& aFile);

} // namespace krapps
