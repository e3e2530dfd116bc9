#pragma once
// Readers of the four orders of a Bayer filter with samples of 8 bits, which are interpolated where they lie.

#include "pixelreaders.h"

namespace krbuffer {

void ReadBayerGR8(const LineSource& aSource, std::uint32_t aLine, std::uint8_t* aBgra, StoreKind);
void ReadBayerRG8(const LineSource& aSource, std::uint32_t aLine, std::uint8_t* aBgra, StoreKind);
void ReadBayerGB8(const LineSource& aSource, std::uint32_t aLine, std::uint8_t* aBgra, StoreKind);
void ReadBayerBG8(const LineSource& aSource, std::uint32_t aLine, std::uint8_t* aBgra, StoreKind);

} // namespace krbuffer
