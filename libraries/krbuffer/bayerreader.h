#pragma once
// Readers of the four orders of a Bayer filter with samples of 8 bits. A missing colour is the mean, rounded half up,
// of the two or four nearest samples of that colour. The image is mirrored at its edges (the edge sample itself is not
// repeated), which keeps every line and column in its own colours; a colour that an image of one line or one column
// does not have at all is 0.

#include "pixelreaders.h"

namespace krbuffer {

void ReadBayerGR8(const LineSource& aSource, std::uint32_t aLine, std::uint8_t* aBgra);
void ReadBayerRG8(const LineSource& aSource, std::uint32_t aLine, std::uint8_t* aBgra);
void ReadBayerGB8(const LineSource& aSource, std::uint32_t aLine, std::uint8_t* aBgra);
void ReadBayerBG8(const LineSource& aSource, std::uint32_t aLine, std::uint8_t* aBgra);

} // namespace krbuffer
