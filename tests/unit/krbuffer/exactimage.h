#pragma once
// An image whose bytes end where its memory ends, so that the address sanitizer hears of every byte read beyond.

#include "foreignimage.h"
#include "noise.h"
#include "pixelreference.h"

#include <algorithm>
#include <cstdint>
#include <memory>
#include <vector>

class ExactImage {
public:
  ExactImage(const KrPixelTypeInfo& aFormat, int aWidth, int aHeight, int aPaddingX, int aPaddingY,
             std::vector<std::uint8_t> aBytes)
      : bytes(std::move(aBytes)), memory(std::make_unique<std::uint8_t[]>(bytes.size())),
        image(static_cast<std::uint32_t>(aWidth), static_cast<std::uint32_t>(aHeight), aFormat.type, {}) {
    std::copy(bytes.begin(), bytes.end(), memory.get());
    image.paddingX = static_cast<std::uint32_t>(aPaddingX);
    image.paddingY = static_cast<std::uint32_t>(aPaddingY);
    image.borrowed = memory.get();
    image.statedSize = bytes.size();
  }

  /// Of noise.
  ExactImage(const KrPixelTypeInfo& aFormat, int aWidth, int aHeight, int aPaddingX = 0, int aPaddingY = 0)
      : ExactImage(aFormat, aWidth, aHeight, aPaddingX, aPaddingY,
                   MakeNoise(PixelReference::GetImageBytes(aFormat, aWidth, aHeight, aPaddingX, aPaddingY),
                             static_cast<std::uint32_t>(31 * aWidth + aHeight))) {}

  std::vector<std::uint8_t> bytes;
  std::unique_ptr<std::uint8_t[]> memory;
  ForeignImage image;
};
