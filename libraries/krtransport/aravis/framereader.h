#pragma once
// Reads what the receiver and the leader say of one frame after the other. What of it is put into a buffer is decided
// by the description.

#include "aravis/framedescription.h"
#include "aravis/gobjectpointer.h"

namespace krtransport {

/// Aravis gives neither the size of an image of which a part is missing nor the number of a frame whose leader is
/// missing: the size is that of the last whole frame, as nothing that it depends on changes while a stream runs, and
/// the number the next one.
///
/// Thread: one at a time.
class FrameReader {
public:
  explicit FrameReader(KrByteOrder aChunkOrder) : mChunkOrder(aChunkOrder) {}

  FrameDescription Read(ArvBuffer* aFrame);

private:
  void ReadNumbers(ArvBuffer* aFrame, FrameDescription& aDescription);
  void ReadImage(ArvBuffer* aFrame, FrameDescription& aDescription);

  KrByteOrder mChunkOrder;
  FrameDescription mLastWhole;
  std::uint64_t mLastFrameID = 0;
};

} // namespace krtransport
