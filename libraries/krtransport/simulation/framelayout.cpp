#include "simulation/framelayout.h"

#include <algorithm>

namespace krtransport {

std::uint64_t GetPayloadBytes(const FrameSettings& aSettings) {
  const std::uint64_t imageBytes = GetFrameBytes(aSettings.picture);
  if (!aSettings.hasChunks)
    return imageBytes;
  // A chunk's length is a multiple of 4 (GigE Vision 2.x).
  const std::uint64_t paddedImageBytes = (imageBytes + 3) / 4 * 4;
  const auto chunks = static_cast<std::uint64_t>(std::ranges::count(aSettings.isChunkEnabled, true));
  return paddedImageBytes + kChunkTrailerBytes + chunks * (kChunkValueBytes + kChunkTrailerBytes);
}

} // namespace krtransport
