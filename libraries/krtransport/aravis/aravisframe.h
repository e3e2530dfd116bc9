#pragma once
// A KrBuffer's memory lent to Aravis for one frame, and what came back of it.

#include "aravis/framedescription.h"
#include "aravis/gobjectpointer.h"
#include "krbuffer/krbuffer.h"

namespace krtransport {

/// Lends a buffer's memory; the buffer must stay as it is while the frame lives.
GObjectPointer<ArvBuffer> LendBuffer(KrBuffer& aBuffer);
/// The buffer whose memory was lent.
KrBuffer* GetLender(ArvBuffer* aFrame);
/// What the receiver and the leader say of a frame.
FrameDescription ReadFrameDescription(ArvBuffer* aFrame);

} // namespace krtransport
