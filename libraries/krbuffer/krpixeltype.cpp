#include "krbuffer/krpixeltype.h"

#include <algorithm>
#include <array>

namespace {

constexpr std::array kPixelTypes = {
    KrPixelTypeInfo{KrPixel::Mono8, "Mono8", 8, 8, KrPixelLayout::Mono},
    KrPixelTypeInfo{KrPixel::Mono10, "Mono10", 16, 10, KrPixelLayout::Mono},
    KrPixelTypeInfo{KrPixel::Mono12, "Mono12", 16, 12, KrPixelLayout::Mono},
    KrPixelTypeInfo{KrPixel::Mono14, "Mono14", 16, 14, KrPixelLayout::Mono},
    KrPixelTypeInfo{KrPixel::Mono16, "Mono16", 16, 16, KrPixelLayout::Mono},
    KrPixelTypeInfo{KrPixel::Mono12p, "Mono12p", 12, 12, KrPixelLayout::Mono},
    KrPixelTypeInfo{KrPixel::BayerGR8, "BayerGR8", 8, 8, KrPixelLayout::BayerGR},
    KrPixelTypeInfo{KrPixel::BayerRG8, "BayerRG8", 8, 8, KrPixelLayout::BayerRG},
    KrPixelTypeInfo{KrPixel::BayerGB8, "BayerGB8", 8, 8, KrPixelLayout::BayerGB},
    KrPixelTypeInfo{KrPixel::BayerBG8, "BayerBG8", 8, 8, KrPixelLayout::BayerBG},
    KrPixelTypeInfo{KrPixel::RGB8, "RGB8", 24, 8, KrPixelLayout::RGB},
    KrPixelTypeInfo{KrPixel::BGR8, "BGR8", 24, 8, KrPixelLayout::BGR},
    KrPixelTypeInfo{KrPixel::RGBa8, "RGBa8", 32, 8, KrPixelLayout::RGBa},
    KrPixelTypeInfo{KrPixel::BGRa8, "BGRa8", 32, 8, KrPixelLayout::BGRa},
};

constexpr bool IsSizeAsInCode(const KrPixelTypeInfo& aRow) {
  return KrGetBitsPerPixel(aRow.type) == aRow.bitsPerPixel && aRow.bitsPerSample <= aRow.bitsPerPixel;
}

constexpr bool IsNamedOnce(const KrPixelTypeInfo& aRow) {
  return std::count_if(kPixelTypes.begin(), kPixelTypes.end(), [&aRow](const KrPixelTypeInfo& aOther) {
           return aOther.type == aRow.type || aOther.name == aRow.name;
         }) == 1;
}

static_assert(std::all_of(kPixelTypes.begin(), kPixelTypes.end(), IsSizeAsInCode),
              "A row states another size than the code has in its bits 16 to 23.");
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
