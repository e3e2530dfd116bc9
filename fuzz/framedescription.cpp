// Whatever a stream's leader may say of a frame: a buffer must never show an image or a chunk that goes
// beyond its memory.

#include "aravis/framedescription.h"
#include "require.h"

#include <cstring>

namespace {

constexpr std::size_t kBufferBytes = 4096;

// Takes the next bytes of the input as a number; zeros when it has ended.
template <typename Number>
Number TakeNumber(const std::uint8_t*& aData, std::size_t& aSize) {
  Number number{};
  const std::size_t size = aSize < sizeof(number) ? aSize : sizeof(number);
  std::memcpy(&number, aData, size);
  aData += size;
  aSize -= size;
  return number;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* aData, std::size_t aSize) {
  krtransport::FrameDescription frame;
  const auto payloadType = TakeNumber<std::uint8_t>(aData, aSize);
  frame.payloadType = payloadType & 0x3F;
  frame.hasChunks = (payloadType & 0x40) != 0;
  frame.chunkOrder = (payloadType & 0x80) != 0 ? KrByteOrder::LittleEndian : KrByteOrder::BigEndian;
  frame.status = static_cast<KrBufferStatus>(TakeNumber<std::uint8_t>(aData, aSize) % 5);
  frame.pixelType = TakeNumber<std::uint32_t>(aData, aSize);
  frame.receivedBytes = TakeNumber<std::uint32_t>(aData, aSize);
  frame.width = TakeNumber<std::int32_t>(aData, aSize);
  frame.height = TakeNumber<std::int32_t>(aData, aSize);
  frame.paddingX = TakeNumber<std::int32_t>(aData, aSize);
  frame.paddingY = TakeNumber<std::int32_t>(aData, aSize);
  KrBuffer buffer;
  Require(buffer.Alloc(kBufferBytes).IsOK());
  std::memcpy(buffer.GetDataPointer(), aData, aSize < kBufferBytes ? aSize : kBufferBytes);

  DescribeFrame(frame, buffer);

  const IKrImage* image = buffer.GetImage();
  Require(!image || image->GetImageSize() <= kBufferBytes);
  Require(buffer.GetAcquiredSize() <= kBufferBytes);
  for (std::size_t i = 0; i < buffer.GetChunkCount(); ++i) {
    const KrChunk& chunk = *buffer.GetChunk(i);
    Require(chunk.offset <= kBufferBytes && chunk.length <= kBufferBytes - chunk.offset);
  }
  return 0;
}
