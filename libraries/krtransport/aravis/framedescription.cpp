#include "aravis/framedescription.h"

#include <algorithm>
#include <limits>

namespace krtransport {
namespace {

bool FitsUnsigned32(std::int64_t aValue) {
  return aValue >= 0 && aValue <= std::numeric_limits<std::uint32_t>::max();
}

KrPayloadType ToPayloadType(std::uint32_t aNumber) {
  constexpr auto kLast = static_cast<std::uint32_t>(KrPayloadType::GenDC);
  return aNumber <= kLast ? static_cast<KrPayloadType>(aNumber) : KrPayloadType::RawData;
}

// Describes the image that the leader names; the code says why it is none.
KrResult DescribeLeaderImage(const FrameDescription& aFrame, KrBuffer& aBuffer) {
  for (const std::int64_t value : {aFrame.width, aFrame.height, aFrame.paddingX, aFrame.paddingY})
    if (!FitsUnsigned32(value))
      return KrResult::Code::InvalidInput;
  return aBuffer.DescribeImage(static_cast<std::uint32_t>(aFrame.width), static_cast<std::uint32_t>(aFrame.height),
                               aFrame.pixelType, static_cast<std::uint32_t>(aFrame.paddingX),
                               static_cast<std::uint32_t>(aFrame.paddingY));
}

KrBufferStatus DescribeAsImage(const FrameDescription& aFrame, KrBuffer& aBuffer) {
  const KrResult result = DescribeLeaderImage(aFrame, aBuffer);
  if (!result.IsOK()) {
    aBuffer.SetPayloadType(KrPayloadType::RawData);
    if (aFrame.status != KrBufferStatus::Complete)
      return aFrame.status;
    return result == KrResult::Code::BadData ? KrBufferStatus::TooSmall : KrBufferStatus::Incomplete;
  }
  const bool isShort = aBuffer.GetAcquiredSize() < aBuffer.GetImage()->GetImageSize();
  return isShort && aFrame.status == KrBufferStatus::Complete ? KrBufferStatus::Incomplete : aFrame.status;
}

} // namespace

bool HasImageInLeader(std::uint32_t aPayloadType) {
  const KrPayloadType type = ToPayloadType(aPayloadType);
  return type == KrPayloadType::Image || type == KrPayloadType::ExtendedChunkData;
}

void DescribeFrame(const FrameDescription& aFrame, KrBuffer& aBuffer) {
  aBuffer.ForgetChunks();
  const bool isImage = HasImageInLeader(aFrame.payloadType);
  aBuffer.SetPayloadType(isImage ? KrPayloadType::Image : ToPayloadType(aFrame.payloadType));
  aBuffer.SetAcquiredSize(static_cast<std::size_t>(std::min<std::uint64_t>(aFrame.receivedBytes, aBuffer.GetSize())));
  aBuffer.SetFrameID(aFrame.frameID);
  aBuffer.SetTimestampNs(aFrame.timestampNs);
  aBuffer.SetHostTimestampNs(aFrame.hostTimestampNs);
  aBuffer.SetStatus(isImage ? DescribeAsImage(aFrame, aBuffer) : aFrame.status);
  if (aFrame.hasChunks && aFrame.status == KrBufferStatus::Complete)
    static_cast<void>(aBuffer.DescribeChunks(aFrame.chunkOrder)); // Bad ones leave none behind.
}

} // namespace krtransport
