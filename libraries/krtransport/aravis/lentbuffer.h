#pragma once
// A KrBuffer's memory lent to Aravis for one frame.

#include "aravis/gobjectpointer.h"
#include "krbuffer/krbuffer.h"

namespace krtransport {

/// Lends a buffer's memory; the buffer must stay as it is while the frame lives.
GObjectPointer<ArvBuffer> LendBuffer(KrBuffer& aBuffer);
/// The buffer whose memory was lent.
KrBuffer* GetLender(ArvBuffer* aFrame);

} // namespace krtransport
