#pragma once
// Samples out of the bytes of a line by vectors, for the packings that are worth it: words, and what is packed with 10
// bits or more.

#include "samplereader.h"

namespace krbuffer {

/// Reads as a SampleReader does, but gives the top 8 bits of each sample.
using TopByteReader = void (*)(const std::uint8_t* aLine, std::size_t aFirst, std::size_t aCount, std::uint8_t* aBytes);

/// The reader for the format's packing and the processor's best vector instructions, or null. Any thread.
SampleReader FindSampleVectorReader(const KrPixelTypeInfo& aFormat);
TopByteReader FindTopByteReader(const KrPixelTypeInfo& aFormat);

} // namespace krbuffer
