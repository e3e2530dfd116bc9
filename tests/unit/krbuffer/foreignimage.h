#pragma once
// An image of an application's own class, which says whatever a test wants it to say.

#include "krbuffer/ikrimage.h"

#include <cstdint>
#include <optional>
#include <utility>
#include <vector>

class ForeignImage : public IKrImage {
public:
  ForeignImage(std::uint32_t aWidth, std::uint32_t aHeight, KrPixelType aType, std::vector<std::uint8_t> aBytes)
      : width(aWidth), height(aHeight), type(aType), bytes(std::move(aBytes)) {}

  std::uint32_t GetWidth() const override { return width; }
  std::uint32_t GetHeight() const override { return height; }
  KrPixelType GetPixelType() const override { return type; }
  std::uint32_t GetPaddingX() const override { return paddingX; }
  std::uint32_t GetPaddingY() const override { return paddingY; }
  std::size_t GetImageSize() const override { return statedSize.value_or(bytes.size()); }
  const std::uint8_t* GetDataPointer() const override { return borrowed ? borrowed : bytes.data(); }
  std::uint8_t* GetDataPointer() override { return borrowed ? borrowed : bytes.data(); }
  KrResult Alloc(std::uint32_t, std::uint32_t, KrPixelType, std::uint32_t, std::uint32_t) override {
    return KrResult::Code::NotOffered;
  }

  std::uint32_t width;
  std::uint32_t height;
  KrPixelType type;
  std::vector<std::uint8_t> bytes;
  std::uint32_t paddingX = 0;
  std::uint32_t paddingY = 0;
  std::optional<std::size_t> statedSize; ///< In place of the size of the bytes.
  std::uint8_t* borrowed = nullptr;      ///< In place of the bytes.
};
