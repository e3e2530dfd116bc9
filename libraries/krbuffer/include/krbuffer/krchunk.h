#pragma once
// Data that a device sends along with an image, or alone: exposure time, counters, line states and the like. What an
// identifier stands for, the device's description says.

#include <cstddef>
#include <cstdint>

/// The order of the bytes of a number.
enum class KrByteOrder {
  LittleEndian, ///< As USB3 Vision sends.
  BigEndian,    ///< As GigE Vision sends.
};

/// One chunk of a buffer.
struct KrChunk {
  std::uint32_t id;   ///< Which data it is; the same chunk has the same identifier in every frame.
  std::size_t offset; ///< Of the data's first byte, from the begin of the buffer.
  std::size_t length; ///< Of the data, in bytes; may be 0.
};
