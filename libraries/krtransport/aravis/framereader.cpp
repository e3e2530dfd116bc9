#include "aravis/framereader.h"

namespace krtransport {
namespace {

KrBufferStatus ToStatus(ArvBufferStatus aStatus) {
  switch (aStatus) {
  case ARV_BUFFER_STATUS_SUCCESS:
    return KrBufferStatus::Complete;
  case ARV_BUFFER_STATUS_SIZE_MISMATCH:
    return KrBufferStatus::TooSmall;
  case ARV_BUFFER_STATUS_CLEARED:
    return KrBufferStatus::Empty;
  case ARV_BUFFER_STATUS_ABORTED:
    return KrBufferStatus::Aborted;
  default:
    return KrBufferStatus::Incomplete;
  }
}

// Numbers of 16 bits go on with 1; those of 64 bits have not come that far in any stream that loses a leader there.
std::uint64_t GetNextNumber(std::uint64_t aFrameID) {
  constexpr std::uint64_t kLastShortNumber = 0xFFFF;
  return aFrameID == kLastShortNumber ? 1 : aFrameID + 1;
}

} // namespace

FrameDescription FrameReader::Read(ArvBuffer* aFrame) {
  FrameDescription frame;
  frame.status = ToStatus(arv_buffer_get_status(aFrame));
  frame.chunkOrder = mChunkOrder;
  std::size_t size = 0;
  arv_buffer_get_data(aFrame, &size);
  frame.receivedBytes = size;
  ReadNumbers(aFrame, frame);
  if (HasImageInLeader(frame.payloadType))
    ReadImage(aFrame, frame);
  if (frame.status == KrBufferStatus::Complete) {
    // Aravis looks into frames that are whole alone.
    frame.hasChunks = arv_buffer_has_chunks(aFrame) != FALSE;
    mLastWhole = frame;
  }
  return frame;
}

void FrameReader::ReadNumbers(ArvBuffer* aFrame, FrameDescription& aDescription) {
  const ArvBufferPayloadType type = arv_buffer_get_payload_type(aFrame);
  const bool hasLeader = type != ARV_BUFFER_PAYLOAD_TYPE_UNKNOWN;
  // The bytes are all that there is of a frame without its leader.
  aDescription.payloadType =
      static_cast<std::uint32_t>(hasLeader ? static_cast<KrPayloadType>(type) : KrPayloadType::RawData);
  aDescription.frameID = hasLeader ? arv_buffer_get_frame_id(aFrame) : GetNextNumber(mLastFrameID);
  if (aDescription.status != KrBufferStatus::Aborted)
    mLastFrameID = aDescription.frameID;
  aDescription.timestampNs = arv_buffer_get_timestamp(aFrame);
  aDescription.hostTimestampNs = arv_buffer_get_system_timestamp(aFrame);
}

void FrameReader::ReadImage(ArvBuffer* aFrame, FrameDescription& aDescription) {
  if (aDescription.status != KrBufferStatus::Complete) {
    aDescription.width = mLastWhole.width;
    aDescription.height = mLastWhole.height;
    aDescription.paddingX = mLastWhole.paddingX;
    aDescription.paddingY = mLastWhole.paddingY;
    aDescription.pixelType = mLastWhole.pixelType;
    return;
  }
  gint paddingX = 0;
  gint paddingY = 0;
  arv_buffer_get_image_padding(aFrame, &paddingX, &paddingY);
  aDescription.width = arv_buffer_get_image_width(aFrame);
  aDescription.height = arv_buffer_get_image_height(aFrame);
  aDescription.paddingX = paddingX;
  aDescription.paddingY = paddingY;
  aDescription.pixelType = arv_buffer_get_image_pixel_format(aFrame);
}

} // namespace krtransport
