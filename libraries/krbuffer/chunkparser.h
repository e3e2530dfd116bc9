#pragma once
// Finds the chunks in the bytes that a device sent. What the chunks mean is left to the device's description.

#include "krbase/krresult.h"
#include "krbuffer/krchunk.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace krbuffer {

/// Chunks lie one behind the other, each as its data, then its identifier and the length of the data in 32 bits each;
/// they are found from the end (GigE Vision 2.0, chunk data; USB3 Vision 1.0, chunk format).
///
/// Thread: a value.
/// Ownership: borrows the bytes.
class ChunkParser {
public:
  /// Beyond this many chunks in one buffer the bytes are taken for no chunks at all.
  static constexpr std::size_t kMostChunks = 4096;

  /// aPlainBytes is the size of an image that may lie before the first chunk without being one itself; 0 for none.
  ChunkParser(std::span<const std::uint8_t> aBytes, KrByteOrder aOrder, std::size_t aPlainBytes)
      : mBytes(aBytes), mOrder(aOrder), mPlainBytes(aPlainBytes) {}

  /// Gives the chunks in the order of memory; none for no bytes. BadData, and the chunks unchanged, where the bytes
  /// contradict themselves.
  KrResult Parse(std::vector<KrChunk>& aChunks) const;

private:
  std::uint32_t ReadNumber(std::size_t aOffset) const;

  std::span<const std::uint8_t> mBytes;
  KrByteOrder mOrder;
  std::size_t mPlainBytes;
};

} // namespace krbuffer
