#pragma once
// Readers of grey formats that pack several samples into a byte. Each sample is shown as a table says.

#include "krbuffer/krpixeltype.h"
#include "linesource.h"

#include <array>
#include <cstdint>

namespace krbuffer {

/// What samples of up to 4 bits are shown as.
using FewBitsTable = std::array<std::uint8_t, 16>;

/// Writes one line as width pixels of BGRa8, as a LineReader does.
using FewBitsReader = void (*)(const LineSource& aSource, std::uint32_t aLine, std::uint8_t* aBgra, StoreKind aStores,
                               const FewBitsTable& aTable);

/// The reader of such a format for the processor's best vector instructions, or null. Any thread.
FewBitsReader FindFewBitsReader(const KrPixelTypeInfo& aFormat);

} // namespace krbuffer
