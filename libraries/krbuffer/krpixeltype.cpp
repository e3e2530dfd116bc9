#include "krbuffer/krpixeltype.h"

#include "pixeltypetable.h"

#include <algorithm>

namespace {

using krbuffer::kPixelTypes;

constexpr bool HasRoomForItsSamples(const KrPixelTypeInfo& aRow) {
  return aRow.bitsPerPixel != 0 && aRow.bitsPerSample != 0 && aRow.bitsPerSample <= aRow.bitsPerPixel;
}

constexpr bool IsNamedOnce(const KrPixelTypeInfo& aRow) {
  return std::count_if(kPixelTypes.begin(), kPixelTypes.end(), [&aRow](const KrPixelTypeInfo& aOther) {
           return aOther.type == aRow.type || aOther.name == aRow.name;
         }) == 1;
}

static_assert(std::all_of(kPixelTypes.begin(), kPixelTypes.end(), HasRoomForItsSamples),
              "A row's samples do not fit into the bits that its code states for a pixel.");
static_assert(std::all_of(kPixelTypes.begin(), kPixelTypes.end(), IsNamedOnce), "Two rows have the same code or name.");

} // namespace

std::optional<KrPixelTypeInfo> KrFindPixelType(KrPixelType aType) {
  const auto row = std::find_if(kPixelTypes.begin(), kPixelTypes.end(),
                                [aType](const KrPixelTypeInfo& aRow) { return aRow.type == aType; });
  return row != kPixelTypes.end() ? std::optional(*row) : std::nullopt;
}

std::optional<KrPixelType> KrFindPixelType(std::string_view aName) {
  const auto row = std::find_if(kPixelTypes.begin(), kPixelTypes.end(),
                                [aName](const KrPixelTypeInfo& aRow) { return aRow.name == aName; });
  return row != kPixelTypes.end() ? std::optional(row->type) : std::nullopt;
}

std::optional<KrPixelType> KrGetUnpackedPixelType(KrPixelType aType) {
  const std::optional<KrPixelTypeInfo> packed = KrFindPixelType(aType);
  if (!packed || packed->bitsPerSample < 8)
    return std::nullopt;
  if (packed->packing == KrPixelPacking::Words && packed->layout != KrPixelLayout::RGBPlanar)
    return packed->layout != KrPixelLayout::Other ? std::optional(aType) : std::nullopt;
  const KrPixelLayout layout = packed->layout == KrPixelLayout::RGBPlanar ? KrPixelLayout::RGB : packed->layout;
  const auto row = std::find_if(kPixelTypes.begin(), kPixelTypes.end(), [&](const KrPixelTypeInfo& aRow) {
    return aRow.packing == KrPixelPacking::Words && aRow.layout == layout && aRow.layout != KrPixelLayout::Other &&
           aRow.bitsPerSample == packed->bitsPerSample && aRow.sampleKind == packed->sampleKind;
  });
  return row != kPixelTypes.end() ? std::optional(row->type) : std::nullopt;
}
