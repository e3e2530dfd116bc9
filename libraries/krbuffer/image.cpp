#include "image.h"

#include <string>

namespace krbuffer {

namespace {

std::string ToText(const ImageShape& aShape) {
  return std::to_string(aShape.width) + " x " + std::to_string(aShape.height) + " pixels of " +
         std::to_string(KrGetBitsPerPixel(aShape.type)) + " bits (pixel type " + std::to_string(aShape.type) + ")";
}

KrResult RefuseShapeWithoutPixels(const ImageShape& aShape) {
  return {KrResult::Code::InvalidInput,
          "An image of " + ToText(aShape) + " has no pixels. Give a width, a height and a pixel type above 0."};
}

} // namespace

Image::Image(Memory& aMemory) : mMemory(aMemory) {}

KrResult Image::Describe(const ImageShape& aShape) {
  if (!HasPixels(aShape))
    return RefuseShapeWithoutPixels(aShape);
  const std::optional<std::uint64_t> bytes = GetImageBytes(aShape);
  if (!bytes || *bytes > mMemory.GetSize())
    return {KrResult::Code::BadData, "An image of " + ToText(aShape) + " does not fit into the buffer's " +
                                         std::to_string(mMemory.GetSize()) +
                                         " bytes. Allocate the buffer with the payload size of the device."};
  mShape = aShape;
  mBytes = static_cast<std::size_t>(*bytes);
  return {};
}

void Image::Forget() {
  mShape = ImageShape{};
  mBytes = 0;
}

const std::uint8_t* Image::GetDataPointer() const {
  return mBytes != 0 ? mMemory.GetDataPointer() : nullptr;
}

std::uint8_t* Image::GetDataPointer() {
  return mBytes != 0 ? mMemory.GetDataPointer() : nullptr;
}

KrResult Image::Alloc(std::uint32_t aWidth, std::uint32_t aHeight, KrPixelType aType, std::uint32_t aPaddingX,
                      std::uint32_t aPaddingY) {
  const ImageShape shape{aWidth, aHeight, aType, aPaddingX, aPaddingY};
  if (!HasPixels(shape))
    return RefuseShapeWithoutPixels(shape);
  const std::optional<std::uint64_t> bytes = GetImageBytes(shape);
  if (!bytes || *bytes > kMaxAllocationBytes)
    return {KrResult::Code::InvalidInput,
            "An image of " + ToText(shape) + " takes more than 4 GiB and is not allocated. Use a smaller image."};
  if (KrResult result = mMemory.Alloc(static_cast<std::size_t>(*bytes)); !result.IsOK())
    return result;
  mShape = shape;
  mBytes = static_cast<std::size_t>(*bytes);
  return {};
}

} // namespace krbuffer
