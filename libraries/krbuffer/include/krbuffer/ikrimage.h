#pragma once
// An image in memory: its size, format and pixels. Where the memory comes from is left to the class behind it.

#include "krbase/krresult.h"
#include "krbuffer/krpixeltype.h"

#include <cstddef>
#include <cstdint>

/// The view of a buffer as an image.
///
/// Thread: as the buffer behind it; reading from several threads is safe while nobody writes.
/// Ownership: borrowed from its KrBuffer and valid as long as that, unless an application implements its own.
class KR_EXPORT IKrImage {
public:
  virtual ~IKrImage() = default;

  /// Width in pixels.
  virtual std::uint32_t GetWidth() const = 0;
  /// Height in lines.
  virtual std::uint32_t GetHeight() const = 0;
  /// The format of the pixels.
  virtual KrPixelType GetPixelType() const = 0;
  /// Bytes after the last pixel of each line, of planar formats each line of each plane, before the next line.
  virtual std::uint32_t GetPaddingX() const = 0;
  /// Bytes after the last line.
  virtual std::uint32_t GetPaddingY() const = 0;
  /// The size in bytes that the image takes by its width, height, format and padding; 0 for an image that holds
  /// nothing. Never more than the memory behind GetDataPointer().
  virtual std::size_t GetImageSize() const = 0;
  /// The first byte of the first (top) line, of planar formats that of the first plane; null for an image that holds
  /// nothing.
  virtual const std::uint8_t* GetDataPointer() const = 0;
  /// The same, to be written.
  virtual std::uint8_t* GetDataPointer() = 0;

  /// Makes room for an image and drops what was there. Padding in bytes.
  /// A width or height of 0, a format without a size or a total beyond 4 GiB gives InvalidInput, too little memory
  /// SystemError; the image is then unchanged.
  virtual KrResult Alloc(std::uint32_t aWidth, std::uint32_t aHeight, KrPixelType aType, std::uint32_t aPaddingX = 0,
                         std::uint32_t aPaddingY = 0) = 0;
};
