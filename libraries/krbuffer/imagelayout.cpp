#include "imagelayout.h"

#include <limits>

namespace krbuffer {

std::optional<std::uint64_t> GetImageBytes(const ImageShape& aShape) {
  constexpr std::uint64_t kMost = std::numeric_limits<std::uint64_t>::max();
  const std::uint64_t strideBytes = GetStrideBytes(aShape);
  if (aShape.height != 0 && strideBytes > (kMost - aShape.paddingY) / aShape.height)
    return std::nullopt;
  return strideBytes * aShape.height + aShape.paddingY;
}

} // namespace krbuffer
