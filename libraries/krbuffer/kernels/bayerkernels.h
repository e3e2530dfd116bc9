#pragma once
// Bilinear interpolation of Bayer lines by vectors: to the last bit what bayerinterpolation.h defines. Samples that are
// wider than bytes are interpolated at their full depth and then shown by their top 8 bits.

#include "bayerinterpolation.h"
#include "linesource.h"

#include <cstddef>
#include <cstdint>

namespace krbuffer {

/// Bayer samples are read in steps of whole vectors, up to so many bytes, which may begin before a run's first column
/// and end after its last one.
inline constexpr std::size_t kMostBayerVectorBytes = 64;

/// Writes a line of an image of bytes with at least two lines and two columns, of which nothing else is read.
void InterpolateBayerBytes(const Neighbourhood<std::uint8_t>& aLines, LineParity aParity, std::size_t aWidth,
                           std::uint8_t* aBgra, StoreKind aStores);

/// Writes aCount pixels out of three runs of words with aBits significant ones: 10, 12, 14 or 16. The first column of
/// the runs is an even one. The column before it, the one after the last and kMostBayerVectorBytes after that are there
/// to be read.
void InterpolateBayerWords(const Neighbourhood<std::uint16_t>& aRuns, LineParity aParity, unsigned aBits,
                           std::size_t aCount, std::uint8_t* aBgra, StoreKind aStores);

} // namespace krbuffer
