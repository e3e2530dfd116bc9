#pragma once
// Readers that turn a whole line of an image into BGRa8 pixels at once: all formats in bytes, and those in words that
// are worth it. Whether the lines are there in memory is checked by the caller.

#include "krbuffer/krpixeltype.h"
#include "linesource.h"

#include <cstdint>

namespace krbuffer {

/// Writes one line as width pixels of BGRa8. It touches nothing but its own destination, so that lines may be read in
/// any order and in several threads.
using LineReader = void (*)(const LineSource& aSource, std::uint32_t aLine, std::uint8_t* aBgra, StoreKind aStores);

/// The reader of a format, or null for a format that no reader takes by whole lines. Any thread.
LineReader FindLineReader(const KrPixelTypeInfo& aFormat);

} // namespace krbuffer
