#include "aravis/aravisframe.h"

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

} // namespace

GObjectPointer<ArvBuffer> LendBuffer(KrBuffer& aBuffer) {
  return GObjectPointer<ArvBuffer>(arv_buffer_new_full(aBuffer.GetSize(), aBuffer.GetDataPointer(), &aBuffer, nullptr));
}

KrBuffer* GetLender(ArvBuffer* aFrame) {
  // Aravis hands its user data out as constant; it is the buffer that LendBuffer got.
  return static_cast<KrBuffer*>(const_cast<void*>(arv_buffer_get_user_data(aFrame)));
}

FrameDescription ReadFrameDescription(ArvBuffer* aFrame) {
  FrameDescription frame;
  frame.status = ToStatus(arv_buffer_get_status(aFrame));
  frame.frameID = arv_buffer_get_frame_id(aFrame);
  frame.timestampNs = arv_buffer_get_timestamp(aFrame);
  frame.hostTimestampNs = arv_buffer_get_system_timestamp(aFrame);
  std::size_t size = 0;
  arv_buffer_get_data(aFrame, &size);
  frame.receivedBytes = size;
  const ArvBufferPayloadType type = arv_buffer_get_payload_type(aFrame);
  // A frame whose leader was lost has no type; its bytes are all that there is.
  frame.payloadType = type == ARV_BUFFER_PAYLOAD_TYPE_UNKNOWN ? static_cast<std::uint32_t>(KrPayloadType::RawData)
                                                              : static_cast<std::uint32_t>(type);
  if (type != ARV_BUFFER_PAYLOAD_TYPE_IMAGE)
    return frame;
  gint paddingX = 0;
  gint paddingY = 0;
  arv_buffer_get_image_padding(aFrame, &paddingX, &paddingY);
  frame.width = arv_buffer_get_image_width(aFrame);
  frame.height = arv_buffer_get_image_height(aFrame);
  frame.paddingX = paddingX;
  frame.paddingY = paddingY;
  frame.pixelType = arv_buffer_get_image_pixel_format(aFrame);
  return frame;
}

} // namespace krtransport
