#pragma once
// What a frame of a simulated camera consists of: the image and, on demand, chunks behind it. Where its bytes come from
// is left to FrameWriter.

#include "simulation/acquisitiontimer.h"
#include "simulation/cameraregisters.h"
#include "simulation/testpattern.h"

#include <array>
#include <cstdint>

namespace krtransport {

/// What a frame depends on, as the registers say at the end of its exposure.
struct FrameSettings {
  Picture picture;
  std::uint32_t packetBytes = 1500; ///< Of a packet with its headers.
  double exposureTimeUs = 0.0;
  bool hasChunks = false;                                            ///< Whether there are chunks at all.
  std::array<bool, cameraregister::kChunkCount> isChunkEnabled = {}; ///< By the chunk selector's values.
  Exposure exposure;
};

/// A chunk ends with its number and its length, both of 4 bytes, most significant byte first (GigE Vision 2.x, chunk
/// data payload). The image is a chunk, too, the first one; the others follow in the order of the selector's values.
inline constexpr std::uint32_t kChunkTrailerBytes = 8;
inline constexpr std::uint32_t kChunkValueBytes = 8;
inline constexpr std::uint32_t kImageChunkID = 0x4B520000;
inline constexpr std::uint32_t kFirstChunkID = 0x4B520010;

/// Bytes of the whole frame.
std::uint64_t GetPayloadBytes(const FrameSettings& aSettings);

} // namespace krtransport
