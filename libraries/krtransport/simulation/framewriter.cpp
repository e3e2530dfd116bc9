#include "simulation/framewriter.h"

#include "simulation/registermemory.h"

#include <algorithm>
#include <array>

namespace krtransport {

namespace {

// Of a packet, the headers of IP, UDP and the stream protocol carry nothing of the frame.
constexpr std::uint32_t kPacketHeaderBytes = 36;

// Writes one chunk behind what is there and returns what comes behind it.
std::uint8_t* EndChunk(std::uint8_t* aOut, std::uint32_t aID, std::uint64_t aLength) {
  EncodeInteger(aID, aOut);
  EncodeInteger(static_cast<std::uint32_t>(aLength), aOut + sizeof(std::uint32_t));
  return aOut + kChunkTrailerBytes;
}

void WriteChunks(const FrameSettings& aSettings, std::uint64_t aFrameID, std::uint8_t* aFrame) {
  using namespace cameraregister;
  const std::uint64_t imageBytes = GetFrameBytes(aSettings.picture);
  const std::uint64_t paddedBytes = (imageBytes + 3) / 4 * 4;
  std::fill(aFrame + imageBytes, aFrame + paddedBytes, std::uint8_t{0});
  std::uint8_t* out = EndChunk(aFrame + paddedBytes, kImageChunkID, paddedBytes);
  for (std::uint32_t chunk = 0; chunk < kChunkCount; ++chunk) {
    if (!aSettings.isChunkEnabled[chunk])
      continue;
    if (chunk == kChunkExposureTime)
      EncodeFloat(aSettings.exposureTimeUs, out);
    else
      EncodeLong(chunk == kChunkFrameID ? aFrameID : aSettings.exposure.beginNs, out);
    out = EndChunk(out + kChunkValueBytes, kFirstChunkID + chunk, kChunkValueBytes);
  }
}

// Nothing of the frame is there; what the buffer holds and is described as is a former frame's.
void SetEmpty(KrBuffer& aBuffer, KrBufferStatus aStatus) {
  aBuffer.SetPayloadType(KrPayloadType::RawData);
  aBuffer.SetAcquiredSize(0);
  aBuffer.ForgetChunks();
  aBuffer.SetStatus(aStatus);
}

} // namespace

FrameWriter::Gap FrameWriter::FindGap(const FrameSettings& aSettings, const PacketFault& aFault) {
  const std::uint64_t payloadBytes = GetPayloadBytes(aSettings);
  const std::uint64_t packetBytes = aSettings.packetBytes - kPacketHeaderBytes;
  const std::uint64_t packets = (payloadBytes + packetBytes - 1) / packetBytes;
  const std::uint64_t first = std::min<std::uint64_t>(aFault.firstPacket, packets);
  const std::uint64_t last = std::min<std::uint64_t>(first + aFault.packets, packets);
  return {static_cast<std::size_t>(std::min(first * packetBytes, payloadBytes)),
          static_cast<std::size_t>(std::min(last * packetBytes, payloadBytes)), last - first};
}

bool FrameWriter::WriteWhole(KrBuffer& aBuffer, const FrameSettings& aSettings, std::uint64_t aFrameID) {
  const Picture& picture = aSettings.picture;
  if (!mPainter.Paint(picture, aFrameID, aBuffer.GetDataPointer()))
    return false;
  if (aSettings.hasChunks)
    WriteChunks(aSettings, aFrameID, aBuffer.GetDataPointer());
  return aBuffer.DescribeImage(picture.width, picture.height, picture.type).IsOK();
}

PacketCounts FrameWriter::Write(KrBuffer& aBuffer, const FrameSettings& aSettings, std::uint64_t aFrameID,
                                const std::optional<PacketFault>& aFault) {
  const auto payloadBytes = static_cast<std::size_t>(GetPayloadBytes(aSettings));
  aBuffer.SetFrameID(aFrameID);
  aBuffer.SetTimestampNs(aSettings.exposure.beginNs);
  if (aBuffer.GetSize() < payloadBytes) {
    SetEmpty(aBuffer, KrBufferStatus::TooSmall);
    return {};
  }
  aBuffer.SetPayloadType(KrPayloadType::Image);
  const Gap gap = aFault ? FindGap(aSettings, *aFault) : Gap{};
  const bool isLost = aFault && !aFault->isLate && gap.packets > 0;
  std::uint8_t* const bytes = aBuffer.GetDataPointer();
  mKept.assign(gap.end - gap.begin, 0);
  if (isLost && aFault->gap == KrPacketGap::Kept)
    mKept.assign(bytes + gap.begin, bytes + gap.end);
  const bool isWritten = WriteWhole(aBuffer, aSettings, aFrameID);
  if (isLost)
    std::ranges::copy(mKept, bytes + gap.begin);
  if (!isWritten) {
    SetEmpty(aBuffer, KrBufferStatus::Incomplete);
    return {};
  }
  aBuffer.ForgetChunks();
  aBuffer.SetAcquiredSize(isLost && gap.end == payloadBytes ? gap.begin : payloadBytes);
  const bool isWhole = !isLost && aBuffer.DescribeChunks(KrByteOrder::BigEndian).IsOK();
  aBuffer.SetStatus(isWhole ? KrBufferStatus::Complete : KrBufferStatus::Incomplete);
  return {gap.packets, aFault && aFault->isLate ? gap.packets : 0};
}

} // namespace krtransport
