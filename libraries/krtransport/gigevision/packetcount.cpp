#include "gigevision/packetcount.h"

#include <algorithm>

namespace krtransport {
namespace {

std::uint64_t ReadInfo(ArvStream& aStream, const char* aName) {
  return arv_stream_get_info_uint64_by_name(&aStream, aName);
}

PacketTotals ReadTotals(ArvStream& aStream) {
  // Packets of frames without a buffer, and those that came twice or in error, belong to no frame.
  const std::uint64_t strangers = ReadInfo(aStream, "n_underruns") + ReadInfo(aStream, "n_duplicated_packets") +
                                  ReadInfo(aStream, "n_error_packets");
  return {.received = ReadInfo(aStream, "n_received_packets") - strangers,
          .resent = ReadInfo(aStream, "n_resent_packets")};
}

FrameEnd ToEnd(ArvBuffer* aFrame) {
  switch (arv_buffer_get_status(aFrame)) {
  case ARV_BUFFER_STATUS_SUCCESS:
    return FrameEnd::Whole;
  case ARV_BUFFER_STATUS_ABORTED:
    return FrameEnd::Aborted;
  default:
    return FrameEnd::CutShort;
  }
}

} // namespace

PacketCount::PacketCount(std::uint64_t aPacketsPerFrame)
    : mLedger(aPacketsPerFrame), mPacketsPerFrame(aPacketsPerFrame) {}

void PacketCount::OnStreamEvent(void* aCount, ArvStreamCallbackType aType, ArvBuffer* aFrame) {
  static_cast<PacketCount*>(aCount)->Note(aType, aFrame);
}

void PacketCount::Note(ArvStreamCallbackType aType, ArvBuffer* aFrame) {
  ArvStream* stream = mStream;
  if (stream == nullptr)
    return;
  if (aType == ARV_STREAM_CALLBACK_TYPE_START_BUFFER)
    mLedger.Begin(ReadTotals(*stream));
  else if (aType == ARV_STREAM_CALLBACK_TYPE_BUFFER_DONE && aFrame != nullptr)
    mLedger.End(ToEnd(aFrame), ReadTotals(*stream));
  mMissing = mLedger.GetMissing();
  mPacketsPerFrame = mLedger.GetPacketsPerFrame();
}

PacketFigures PacketCount::GetFigures(ArvStream& aStream) const {
  // What Aravis calls underruns are the packets, not the frames, for which there was no buffer.
  return {.missingPackets = mMissing,
          .resentPackets = ReadInfo(aStream, "n_resent_packets"),
          .droppedFrames = ReadInfo(aStream, "n_underruns") / std::max<std::uint64_t>(mPacketsPerFrame, 1)};
}

} // namespace krtransport
