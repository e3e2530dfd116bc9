// Whatever a device may send as chunks: those that are found must lie within the bytes, one behind the other, and be
// all of them.

#include "chunkparser.h"
#include "require.h"

namespace {

constexpr std::size_t kTrailerBytes = 8;

} // namespace

// The first byte says the byte order and how long an image lies before the chunks; the rest is what was sent.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* aData, std::size_t aSize) {
  if (aSize == 0)
    return 0;
  const KrByteOrder order = aData[0] % 2 != 0 ? KrByteOrder::BigEndian : KrByteOrder::LittleEndian;
  const std::size_t plainBytes = aData[0] / 2;
  const std::span<const std::uint8_t> bytes(aData + 1, aSize - 1);
  const std::vector<KrChunk> before = {{1, 2, 3}};
  std::vector<KrChunk> chunks = before;

  const KrResult result = krbuffer::ChunkParser(bytes, order, plainBytes).Parse(chunks);

  if (!result.IsOK()) {
    Require(result == KrResult::Code::BadData && chunks.size() == before.size());
    return 0;
  }
  Require(chunks.size() <= krbuffer::ChunkParser::kMostChunks);
  std::size_t end = chunks.empty() ? bytes.size() : chunks.front().offset;
  Require(end == 0 || end == plainBytes);
  for (const KrChunk& chunk : chunks) {
    Require(chunk.offset == end);
    end += chunk.length + kTrailerBytes;
  }
  Require(end == bytes.size());
  return 0;
}
