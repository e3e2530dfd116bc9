#pragma once
// A frame as PNG: the image as it is shown, grey or RGB in 8 bits.

#include "framefile.h"
#include "krbase/kratomicfile.h"

namespace krapps {

/// Writes the frame, which holds an image, into a file that is open. Results as WriteFrame.
KrResult WritePng(const KrBuffer& aFrame, const FrameFileOptions& aOptions, KrAtomicFile& aFile);

} // namespace krapps
