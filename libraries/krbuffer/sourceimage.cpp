#include "sourceimage.h"

#include "krbuffer/krbufferconverter.h"

#include <exception>
#include <new>
#include <optional>
#include <string>
#include <system_error>

namespace krbuffer {

std::string GetTypeText(KrPixelType aType) {
  const std::optional<KrPixelTypeInfo> info = KrFindPixelType(aType);
  return info ? std::string(info->name) : std::to_string(aType);
}

SourceImage AskSource(const IKrImage& aSource) {
  return {
      {aSource.GetWidth(), aSource.GetHeight(), aSource.GetPixelType(), aSource.GetPaddingX(), aSource.GetPaddingY()},
      aSource.GetDataPointer(),
      aSource.GetImageSize()};
}

KrResult CheckSource(const SourceImage& aSource, KrPixelType aWanted) {
  const ImageShape& shape = aSource.shape;
  if (shape.width == 0 || shape.height == 0)
    return {KrResult::Code::InvalidInput, "An image of " + std::to_string(shape.width) + " x " +
                                              std::to_string(shape.height) +
                                              " pixels cannot be converted. Give an image that holds pixels."};
  if (!KrBufferConverter::IsConversionSupported(shape.type, aWanted))
    return {KrResult::Code::NotSupported, "Cannot convert from pixel type " + GetTypeText(shape.type) + " to " +
                                              GetTypeText(aWanted) + ". Choose another pixel format on the device."};
  const std::optional<std::uint64_t> bytes = GetImageBytes(shape);
  if (!aSource.data || !bytes || *bytes > aSource.bytes)
    return {KrResult::Code::BadData, "An image of " + std::to_string(shape.width) + " x " +
                                         std::to_string(shape.height) + " pixels of " + GetTypeText(shape.type) +
                                         " was to be converted, but only " +
                                         std::to_string(aSource.data ? aSource.bytes : 0) + " bytes of it are there."};
  return {};
}

// Reckoned by distances, as the sums could pass the end of the address space.
bool ShareMemory(const SourceImage& aSource, const KrBuffer& aDestination) {
  const auto source = reinterpret_cast<std::uintptr_t>(aSource.data);
  const auto destination = reinterpret_cast<std::uintptr_t>(aDestination.GetDataPointer());
  return destination >= source ? destination - source < GetImageBytes(aSource.shape).value_or(0)
                               : source - destination < aDestination.GetSize();
}

KrResult RefuseSharedMemory() {
  return {KrResult::Code::InvalidInput,
          "An image was to be converted into the memory that it lies in. Give a destination with its own memory."};
}

KrResult FitDestination(const ImageShape& aSource, KrPixelType aWanted, IKrImage& aDestination, bool aAllocate) {
  const bool fits = aDestination.GetWidth() == aSource.width && aDestination.GetHeight() == aSource.height &&
                    aDestination.GetPixelType() == aWanted;
  if (fits)
    return {};
  if (!aAllocate)
    return {KrResult::Code::InvalidInput,
            "An image of " + std::to_string(aSource.width) + " x " + std::to_string(aSource.height) +
                " pixels does not fit the destination's image of " + std::to_string(aDestination.GetWidth()) + " x " +
                std::to_string(aDestination.GetHeight()) + ". Allocate it in this size, or let the converter do so."};
  return aDestination.Alloc(aSource.width, aSource.height, aWanted);
}

std::unique_ptr<LineConverter> MakeSourceConverter(const SourceImage& aSource, KrPixelType aWanted, ToneStore& aTones) {
  const ImageShape& shape = aSource.shape;
  return MakeLineConverter({aSource.data, static_cast<std::size_t>(GetStrideBytes(shape)), shape.width, shape.height},
                           shape.type, aWanted, aTones);
}

KrResult ExplainConversionEnd() {
  try {
    throw;
  } catch (const std::bad_alloc&) {
    return {KrResult::Code::SystemError, "An image could not be converted: there is too little memory. Free buffers."};
  } catch (const std::system_error& error) {
    return {KrResult::Code::SystemError, std::string("An image could not be converted: the system gives no threads (") +
                                             error.what() + "). Use a converter with one thread."};
  } catch (const std::exception& error) {
    // An application's own image may throw what it likes.
    return {KrResult::Code::Failed, std::string("An image could not be converted: its class threw: ") + error.what()};
  } catch (...) {
    return {KrResult::Code::Failed, "An image could not be converted: its class threw an unknown exception."};
  }
}

} // namespace krbuffer
