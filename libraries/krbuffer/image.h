#pragma once
// The view of a buffer's memory as an image. It holds the description alone; the memory belongs to the buffer.

#include "imagelayout.h"
#include "krbuffer/ikrimage.h"
#include "memory.h"

namespace krbuffer {

/// Thread: one at a time; reading from several while nobody writes.
/// Ownership: borrows the memory, which must outlive the image.
class Image final : public IKrImage {
public:
  explicit Image(Memory& aMemory);

  /// Describes the memory's bytes. InvalidInput for a shape without pixels, BadData for one larger than the memory; the
  /// description is then unchanged.
  KrResult Describe(const ImageShape& aShape);
  /// Forgets the description; the image then holds nothing.
  void Forget();

  std::uint32_t GetWidth() const override { return mShape.width; }
  std::uint32_t GetHeight() const override { return mShape.height; }
  KrPixelType GetPixelType() const override { return mShape.type; }
  std::uint32_t GetPaddingX() const override { return mShape.paddingX; }
  std::uint32_t GetPaddingY() const override { return mShape.paddingY; }
  std::size_t GetImageSize() const override { return mBytes; }
  const std::uint8_t* GetDataPointer() const override;
  std::uint8_t* GetDataPointer() override;
  KrResult Alloc(std::uint32_t aWidth, std::uint32_t aHeight, KrPixelType aType, std::uint32_t aPaddingX,
                 std::uint32_t aPaddingY) override;

private:
  Memory& mMemory;
  ImageShape mShape;
  std::size_t mBytes = 0; ///< Of the whole image; never more than the memory has.
};

} // namespace krbuffer
