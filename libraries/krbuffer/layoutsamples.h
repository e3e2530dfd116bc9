#pragma once
// How many samples the layouts of pixels have.

#include "krbuffer/krpixeltype.h"

#include <array>

namespace krbuffer {

/// Counted for four pixels, so that those of subsampled formats are whole.
struct LayoutSamples {
  KrPixelLayout layout;
  unsigned samplesOfFourPixels;
};

inline constexpr std::array kLayoutSamples = {
    LayoutSamples{KrPixelLayout::Mono, 4},    LayoutSamples{KrPixelLayout::BayerGR, 4},
    LayoutSamples{KrPixelLayout::BayerRG, 4}, LayoutSamples{KrPixelLayout::BayerGB, 4},
    LayoutSamples{KrPixelLayout::BayerBG, 4}, LayoutSamples{KrPixelLayout::RGB, 12},
    LayoutSamples{KrPixelLayout::BGR, 12},    LayoutSamples{KrPixelLayout::RGBa, 16},
    LayoutSamples{KrPixelLayout::BGRa, 16},   LayoutSamples{KrPixelLayout::RGBPlanar, 12},
    LayoutSamples{KrPixelLayout::YUV, 12},    LayoutSamples{KrPixelLayout::UYV, 12},
    LayoutSamples{KrPixelLayout::YUYV, 8},    LayoutSamples{KrPixelLayout::UYVY, 8},
    LayoutSamples{KrPixelLayout::UYYVYY, 6},  LayoutSamples{KrPixelLayout::YYUYYV, 6},
};

/// 0 for the layout that does not tell.
constexpr unsigned CountSamplesOfFourPixels(KrPixelLayout aLayout) {
  for (const LayoutSamples& row : kLayoutSamples)
    if (row.layout == aLayout)
      return row.samplesOfFourPixels;
  return 0;
}

} // namespace krbuffer
