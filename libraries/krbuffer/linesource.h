#pragma once
// The lines of an image that is known to be complete in memory.

#include <cstddef>
#include <cstdint>

namespace krbuffer {

/// How a line is written. Streaming passes the cache by: for images that do not fit into it and are not read again
/// soon; FinishStores belongs after the last of them.
enum class StoreKind { Cached, Streaming };

struct LineSource {
  const std::uint8_t* data;
  std::size_t strideBytes;
  std::uint32_t width;
  std::uint32_t height; ///< Lines of one plane.

  /// A line of the first, or only, plane.
  const std::uint8_t* GetLine(std::uint32_t aLine) const { return data + strideBytes * aLine; }
  /// A line of a plane; planes follow each other.
  const std::uint8_t* GetPlaneLine(std::uint32_t aPlane, std::uint32_t aLine) const {
    return data + strideBytes * (std::size_t{height} * aPlane + aLine);
  }
};

} // namespace krbuffer
