#pragma once
// Luma and chroma to colours in words of 16 bits, exactly: the nearest byte, halves up, of what the colour space
// defines.
//
// A colour is floor(l Y + c + 1/2), with luma's factor l = n / d and chroma's part c. As n Y is whole, that is
// floor((n Y + floor(d c + d / 2)) / d): chroma's part may be rounded down to d-ths once for all pixels that share it,
// and nothing is lost. l is 85 / 73 for luma from 16 to 235; for luma from 0 to 255 it is taken as 125 / 125, which
// makes chroma's part easy to round. The factors below give the d-ths of chroma exactly for every U and V, and the
// quotient for every sum: the tests compare all luma, U and V with the exact fractions.

#include "krbuffer/krpixeltype.h"

#include <array>
#include <cstdint>

namespace krbuffer {

/// Green's part of chroma needs factors with so many bits after the point, which come in two words.
inline constexpr int kGreenBits = 21;
inline constexpr int kGreenLowBits = 13;

struct LumaChromaMatrix {
  KrColorSpace space;
  /// d-ths in luma, and what is to be added to them: the offset of luma and the whole part of d / 2.
  std::int16_t luma;
  std::int16_t lumaAddend;
  /// d-ths in U for blue and in V for red, less 128 each: a whole part, and 2^-15 of what is then rounded.
  std::int16_t blueWhole;
  std::int16_t redWhole;
  std::int16_t bluePart;
  std::int16_t redPart;
  /// 2^-kGreenBits of d-ths in U and V for green, and what rounds their sum.
  std::int32_t greenU;
  std::int32_t greenV;
  std::int32_t greenAddend;
  /// 2^21 / d: 64 times the quotient is the rounded product with 2^-15 of it; its lower 6 bits are cut off.
  std::int16_t reciprocal;
};

inline constexpr int kQuotientBits = 6;

inline constexpr std::array kLumaChromaMatrices = {
    LumaChromaMatrix{KrColorSpace::Full601, 125, 62, 222, 175, -16384, 8192, -90213265, -187206545, 1048969, 16777},
    LumaChromaMatrix{KrColorSpace::Video601, 85, 36 - 85 * 16, 147, 117, 8453, -16058, -59975710, -124458921, 1048575,
                     28728},
    LumaChromaMatrix{KrColorSpace::Video709, 85, 36 - 85 * 16, 154, 131, 6728, -4257, -32646678, -81584206, 1048575,
                     28728},
};

} // namespace krbuffer
