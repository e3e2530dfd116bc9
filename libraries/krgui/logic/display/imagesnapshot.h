#pragma once
// What an image says of itself, asked once: an image of an application's own class may answer differently every time,
// and is not asked while a lock is held.

#include "krbuffer/ikrimage.h"

namespace krgui {

/// Ownership: borrows the image's bytes, nothing else of it.
class ImageSnapshot final : public IKrImage {
public:
  ImageSnapshot() = default;
  explicit ImageSnapshot(const IKrImage& aImage)
      : mWidth(aImage.GetWidth()), mHeight(aImage.GetHeight()), mSize(aImage.GetImageSize()),
        mType(aImage.GetPixelType()), mPaddingX(aImage.GetPaddingX()), mPaddingY(aImage.GetPaddingY()),
        mData(aImage.GetDataPointer()) {}

  std::uint32_t GetWidth() const override { return mWidth; }
  std::uint32_t GetHeight() const override { return mHeight; }
  KrPixelType GetPixelType() const override { return mType; }
  std::uint32_t GetPaddingX() const override { return mPaddingX; }
  std::uint32_t GetPaddingY() const override { return mPaddingY; }
  std::size_t GetImageSize() const override { return mSize; }
  const std::uint8_t* GetDataPointer() const override { return mData; }
  /// Null: nobody writes through a snapshot.
  std::uint8_t* GetDataPointer() override { return nullptr; }
  KrResult Alloc(std::uint32_t, std::uint32_t, KrPixelType, std::uint32_t, std::uint32_t) override {
    return {KrResult::Code::NotOffered, "A snapshot of an image cannot be allocated. Allocate the image itself."};
  }

private:
  std::uint32_t mWidth = 0;
  std::uint32_t mHeight = 0;
  std::size_t mSize = 0;
  KrPixelType mType = 0;
  std::uint32_t mPaddingX = 0;
  std::uint32_t mPaddingY = 0;
  const std::uint8_t* mData = nullptr;
};

} // namespace krgui
