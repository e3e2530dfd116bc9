#include "krbuffer/krpixeltype.h"

#include "layoutsamples.h"
#include "pixeltypetable.h"

#include <algorithm>
#include <bit>

namespace {

using krbuffer::CountSamplesOfFourPixels;
using krbuffer::kPixelTypes;

constexpr bool HasRoomForItsSamples(const KrPixelTypeInfo& aRow) {
  return aRow.bitsPerPixel != 0 && aRow.bitsPerSample != 0 && aRow.bitsPerSample <= aRow.bitsPerPixel;
}

constexpr bool IsNamedOnce(const KrPixelTypeInfo& aRow) {
  return std::count_if(kPixelTypes.begin(), kPixelTypes.end(), [&aRow](const KrPixelTypeInfo& aOther) {
           return aOther.type == aRow.type || aOther.name == aRow.name;
         }) == 1;
}

/// Bits that a sample takes by its packing; 0 where the packing does not tell.
constexpr unsigned GetBitsInMemory(const KrPixelTypeInfo& aRow) {
  switch (aRow.packing) {
  case KrPixelPacking::Words:
    return std::max(8u, std::bit_ceil(unsigned{aRow.bitsPerSample}));
  case KrPixelPacking::LsbFirst:
    return aRow.bitsPerSample;
  case KrPixelPacking::GigE:
    return 12;
  default:
    return 0;
  }
}

/// In 565 formats not all samples are of one size.
constexpr bool AddsUpToItsBits(const KrPixelTypeInfo& aRow) {
  const unsigned samples = CountSamplesOfFourPixels(aRow.layout);
  const unsigned bits = GetBitsInMemory(aRow);
  return samples == 0 || bits == 0 || aRow.bitsPerSample == 6 || samples * bits == 4u * aRow.bitsPerPixel;
}

/// The code's own field tells one component a pixel from several (PFNC 2.0, section 5).
constexpr bool HasItsLayoutInTheCode(const KrPixelTypeInfo& aRow) {
  constexpr std::uint32_t kSingle = 1;
  constexpr std::uint32_t kSeveral = 2;
  const std::uint32_t field = aRow.type >> 24;
  if (aRow.layout == KrPixelLayout::Other)
    return field == kSeveral;
  return field == (CountSamplesOfFourPixels(aRow.layout) == 4 ? kSingle : kSeveral);
}

constexpr bool IsPackedAsItsNameSays(const KrPixelTypeInfo& aRow) {
  return (!aRow.name.ends_with('p') || aRow.packing == KrPixelPacking::LsbFirst) &&
         (aRow.packing != KrPixelPacking::GigE || aRow.name.ends_with("Packed"));
}

constexpr bool HasColorSpaceForChroma(const KrPixelTypeInfo& aRow) {
  return (aRow.colorSpace != KrColorSpace::None) == (aRow.name.starts_with("YUV") || aRow.name.starts_with("YCbCr"));
}

static_assert(std::all_of(kPixelTypes.begin(), kPixelTypes.end(), AddsUpToItsBits),
              "A row's samples do not add up to the bits that its code states for a pixel.");
static_assert(std::all_of(kPixelTypes.begin(), kPixelTypes.end(), HasItsLayoutInTheCode),
              "A row's layout is not that of its code.");
static_assert(std::all_of(kPixelTypes.begin(), kPixelTypes.end(), IsPackedAsItsNameSays),
              "A row's packing is not that of its name.");
static_assert(std::all_of(kPixelTypes.begin(), kPixelTypes.end(), HasColorSpaceForChroma),
              "A row with luma and chroma has no colour space, or another one has.");
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
