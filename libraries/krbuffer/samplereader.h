#pragma once
// Samples of up to 16 bits out of the bytes of a line, for every packing. What the samples mean, and in which order the
// components of a pixel come, is left to the callers.

#include "krbuffer/krpixeltype.h"

#include <cstddef>
#include <cstdint>

namespace krbuffer {

/// Samples that readers take at a time; a multiple of kSampleAlignment.
inline constexpr std::size_t kRunSamples = 256;
/// Sample 0 of every so many begins on a byte, whatever the packing.
inline constexpr std::size_t kSampleAlignment = 8;

/// Reads aCount samples from sample aFirst on, which is a multiple of kSampleAlignment. Bits above the significant ones
/// are not looked at; signed samples come with half of their range added, so that the least one is 0. No byte is read
/// beyond the one in which the last sample ends.
using SampleReader = void (*)(const std::uint8_t* aLine, std::size_t aFirst, std::size_t aCount,
                              std::uint16_t* aSamples);

/// The reader for the format's packing, or null where its samples have more than 16 bits or are not of one size. Any
/// thread.
SampleReader FindSampleReader(const KrPixelTypeInfo& aFormat);

/// One sample at any place.
std::uint16_t ReadSample(SampleReader aReader, const std::uint8_t* aLine, std::size_t aIndex);

} // namespace krbuffer
