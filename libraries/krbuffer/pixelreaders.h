#pragma once
// How each format is read: one function per format that turns a line of an image into BGRa8 pixels.
// Whether the lines are there in memory is checked by the caller.

#include "krbuffer/krpixeltype.h"
#include "linesource.h"

#include <cstdint>

namespace krbuffer {

/// Writes one line as width pixels of BGRa8. It touches nothing but its own destination, so that lines may be read in
/// any order and in several threads.
using LineReader = void (*)(const LineSource& aSource, std::uint32_t aLine, std::uint8_t* aBgra);

/// The reader of a format, or null for a format that is not read. Any thread.
LineReader FindLineReader(KrPixelType aType);

} // namespace krbuffer
