#include "shownimage.h"

#include "krbuffer/krbufferconverter.h"

#include <cstddef>
#include <optional>

namespace krapps {

bool IsShownGrey(KrPixelType aType) {
  const std::optional<KrPixelTypeInfo> info = KrFindPixelType(aType);
  return info && info->layout == KrPixelLayout::Mono;
}

KrResult MakeShownImage(const IKrImage& aImage, KrBuffer& aShown) {
  const KrBufferConverter converter;
  if (KrResult converted = converter.Convert(&aImage, &aShown, true, false); !converted.IsOK())
    return converted;
  // In place: a pixel is never written before it was read.
  const bool isGrey = IsShownGrey(aImage.GetPixelType());
  const std::size_t pixels = std::size_t{aImage.GetWidth()} * aImage.GetHeight();
  std::uint8_t* to = aShown.GetDataPointer();
  const std::uint8_t* from = to;
  for (std::size_t index = 0; index < pixels; ++index, from += 4) {
    const std::uint8_t blue = from[0];
    const std::uint8_t green = from[1];
    const std::uint8_t red = from[2];
    *to++ = red;
    if (isGrey)
      continue;
    *to++ = green;
    *to++ = blue;
  }
  return aShown.DescribeImage(aImage.GetWidth(), aImage.GetHeight(), isGrey ? KrPixel::Mono8 : KrPixel::RGB8);
}

} // namespace krapps
