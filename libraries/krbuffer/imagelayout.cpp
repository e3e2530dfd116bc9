#include "imagelayout.h"

#include "pixeltypetable.h"

#include <algorithm>
#include <limits>

namespace krbuffer {

namespace {

constexpr bool StatesItsPlanes(const KrPixelTypeInfo& aRow) {
  const std::uint32_t planes = GetPlaneCount(aRow.type);
  return aRow.name.ends_with("_Planar") == (planes > 1) && aRow.bitsPerPixel % planes == 0;
}

static_assert(std::all_of(kPixelTypes.begin(), kPixelTypes.end(), StatesItsPlanes),
              "A planar format is missing in the list of planes, or its planes do not divide its bits per pixel.");

} // namespace

std::optional<std::uint64_t> GetImageBytes(const ImageShape& aShape) {
  constexpr std::uint64_t kMost = std::numeric_limits<std::uint64_t>::max();
  const std::uint64_t strideBytes = GetStrideBytes(aShape);
  const std::uint64_t lines = std::uint64_t{aShape.height} * GetPlaneCount(aShape.type);
  if (lines != 0 && strideBytes > (kMost - aShape.paddingY) / lines)
    return std::nullopt;
  return strideBytes * lines + aShape.paddingY;
}

} // namespace krbuffer
