#pragma once
// How each format is read: one function per format that turns a line of an image into BGRa8 pixels.
// Whether the lines are there in memory is checked by the caller.

#include "krbuffer/krpixeltype.h"

#include <cstddef>
#include <cstdint>

namespace krbuffer {

/// The lines of an image that is known to be complete in memory.
struct LineSource {
  const std::uint8_t* data;
  std::size_t strideBytes;
  std::uint32_t width;
  std::uint32_t height;

  const std::uint8_t* GetLine(std::uint32_t aLine) const { return data + strideBytes * aLine; }
};

/// Writes one line as width pixels of BGRa8. It touches nothing but its own destination, so that lines may be read in
/// any order and in several threads.
using LineReader = void (*)(const LineSource& aSource, std::uint32_t aLine, std::uint8_t* aBgra);

/// The reader of a format, or null for a format that is not read. Any thread.
LineReader FindLineReader(KrPixelType aType);

} // namespace krbuffer
