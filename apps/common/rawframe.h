#pragma once
// The text beside a raw file: what its bytes are. The bytes need no writer of their own.

#include "framefile.h"

#include <string>

namespace krapps {

/// The name of the text that belongs to a raw file.
KrString GetSidecarName(const KrString& aFileName);

/// All that a reader of the bytes must know, as lines of "key=value".
std::string DescribeRawFrame(const KrBuffer& aFrame, const FrameFileOptions& aOptions);

} // namespace krapps
