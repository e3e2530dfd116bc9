#pragma once
// What the sensor sent for one pixel, before any conversion.

#include "krbase/krresult.h"
#include "krbuffer/ikrimage.h"

#include <array>
#include <cstdint>

/// The samples of one pixel, in the order and units of its format.
struct KrPixelValue {
  /// 1 to 4: one for mono, Bayer and coordinates; three or four for colours. Of subsampled luma and chroma Y, U (Cb)
  /// and V (Cr) of the pixel's group, whatever their order in memory.
  int sampleCount = 0;
  /// Integers exactly up to 53 bits.
  std::array<double, 4> samples{};
  /// What each sample is: 'Y' grey or luma, 'R', 'G', 'B', 'A' alpha, 'U', 'V'; of Bayer formats the colour of the
  /// filter there.
  std::array<char, 4> components{};
};

/// Reads one pixel. InvalidInput for a place outside the image, NotSupported for a format whose samples cannot be told
/// apart, BadData for an image with fewer bytes than it says; aValue is then unchanged.
/// Thread: any, while nobody writes to the image.
KR_EXPORT KrResult KrReadPixel(const IKrImage& aImage, std::uint32_t aX, std::uint32_t aY, KrPixelValue& aValue);
