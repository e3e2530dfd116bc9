#pragma once
// Colours at the full depth of their samples, a run of pixels at a time: components side by side, in planes, and behind
// a Bayer filter. Making bytes of them is left to the converter.

#include "bayerinterpolation.h"
#include "krbuffer/krpixeltype.h"
#include "linesource.h"
#include "samplereader.h"

#include <cstddef>
#include <cstdint>

namespace krbuffer {

/// Reads the pixels of a line from column aFirst on, which is a multiple of kSampleAlignment; at most kRunSamples.
using DeepReader = void (*)(const LineSource& aSource, SampleReader aSamples, std::uint32_t aLine, std::uint32_t aFirst,
                            std::uint32_t aCount, DeepPixel* aPixels);

/// The reader for an order of components; null for those without three colours or with more. Any thread.
DeepReader FindDeepReader(KrPixelLayout aLayout);

} // namespace krbuffer
