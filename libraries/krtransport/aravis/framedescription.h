#pragma once
// What a frame's leader and the receiver say of a filled buffer, put into the buffer. Nothing that they say is believed
// beyond the memory that is there.

#include "krbuffer/krbuffer.h"

#include <cstddef>
#include <cstdint>

namespace krtransport {

/// What was received. Numbers as the device sent them, so any of them may be a lie.
struct FrameDescription {
  KrBufferStatus status = KrBufferStatus::Complete;
  std::uint32_t payloadType = 0; ///< As the leader numbers it.
  std::int64_t width = 0;
  std::int64_t height = 0;
  std::int64_t paddingX = 0;
  std::int64_t paddingY = 0;
  KrPixelType pixelType = 0;
  std::uint64_t receivedBytes = 0;
  bool hasChunks = false; ///< Beside the image, or alone.
  KrByteOrder chunkOrder = KrByteOrder::BigEndian;
  std::uint64_t frameID = 0;
  std::uint64_t timestampNs = 0;
  std::uint64_t hostTimestampNs = 0;
};

/// Whether the leader of such a payload describes an image: images, and the extended chunk data that GigE Vision 1.x
/// devices send in its place while they append chunks.
bool HasImageInLeader(std::uint32_t aPayloadType);

/// Fills in payload type, image, sizes, numbers and status. A complete frame whose image does not fit into the buffer
/// becomes TooSmall, one whose image contradicts itself or the bytes received Incomplete; bytes that cannot be
/// described as an image become raw data, so that nobody sees the image of an earlier frame. An image with chunks is
/// an image, whatever the leader calls it. Chunks that contradict themselves are left out; the frame's status does not
/// depend on them.
void DescribeFrame(const FrameDescription& aFrame, KrBuffer& aBuffer);

} // namespace krtransport
