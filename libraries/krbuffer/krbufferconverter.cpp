#include "krbuffer/krbufferconverter.h"

#include "imagelayout.h"
#include "lineconverter.h"
#include "tonestore.h"
#include "workerpool.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <exception>
#include <mutex>
#include <new>
#include <string>
#include <system_error>
#include <thread>

namespace {

using krbuffer::ImageShape;
using krbuffer::LineConverter;
using krbuffer::StoreKind;
using krbuffer::ToneSettings;
using krbuffer::ToneStore;
using krbuffer::WorkerPool;

constexpr int kMostThreads = 64;
/// From this many pixels on, sharing an image costs less than it saves.
constexpr std::uint64_t kLeastSharedPixels = 256 * 1024;
/// Parts for each thread, so that one that is held up does not hold up the whole image.
constexpr std::uint32_t kPartsPerThread = 4;

constexpr double kMostWhiteBalance = 16;
constexpr double kLeastGamma = 0.1;
constexpr double kMostGamma = 10;

/// What a source says of itself, asked once: an application's own image may answer differently every time.
struct SourceImage {
  ImageShape shape;
  const std::uint8_t* data;
  std::size_t bytes;
};

SourceImage AskSource(const IKrImage& aSource) {
  return {
      {aSource.GetWidth(), aSource.GetHeight(), aSource.GetPixelType(), aSource.GetPaddingX(), aSource.GetPaddingY()},
      aSource.GetDataPointer(),
      aSource.GetImageSize()};
}

std::string GetTypeText(KrPixelType aType) {
  const std::optional<KrPixelTypeInfo> info = KrFindPixelType(aType);
  return info ? std::string(info->name) : std::to_string(aType);
}

/// The format that the destination's image asks for.
KrPixelType GetWantedType(const IKrImage& aDestination) {
  return aDestination.GetImageSize() != 0 ? aDestination.GetPixelType() : KrPixel::BGRa8;
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
  const std::optional<std::uint64_t> bytes = krbuffer::GetImageBytes(shape);
  if (!aSource.data || !bytes || *bytes > aSource.bytes)
    return {KrResult::Code::BadData, "An image of " + std::to_string(shape.width) + " x " +
                                         std::to_string(shape.height) + " pixels of " + GetTypeText(shape.type) +
                                         " was to be converted, but only " +
                                         std::to_string(aSource.data ? aSource.bytes : 0) + " bytes of it are there."};
  return {};
}

/// True when writing or replacing the destination's memory would change the source, which is known to be complete.
/// Reckoned by distances, as the sums could pass the end of the address space.
bool ShareMemory(const SourceImage& aSource, const KrBuffer& aDestination) {
  const auto source = reinterpret_cast<std::uintptr_t>(aSource.data);
  const auto destination = reinterpret_cast<std::uintptr_t>(aDestination.GetDataPointer());
  return destination >= source ? destination - source < krbuffer::GetImageBytes(aSource.shape).value_or(0)
                               : source - destination < aDestination.GetSize();
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

/// One conversion with everything checked.
struct Conversion {
  const LineConverter& converter;
  std::uint32_t height;
  std::uint8_t* destination;
  std::size_t destinationStrideBytes;
  bool bottomUp;
  StoreKind stores;

  void ConvertLines(std::uint64_t aFirst, std::uint64_t aEnd) const {
    for (std::uint64_t index = aFirst; index < aEnd; ++index) {
      const auto line = static_cast<std::uint32_t>(index);
      const std::uint32_t target = bottomUp ? height - 1 - line : line;
      converter.ConvertLine(line, destination + destinationStrideBytes * target, stores);
    }
  }
};

Conversion MakeConversion(const LineConverter& aConverter, IKrImage& aDestination, bool aBottomUp) {
  const ImageShape destination{aDestination.GetWidth(), aDestination.GetHeight(), aDestination.GetPixelType(),
                               aDestination.GetPaddingX(), aDestination.GetPaddingY()};
  return {aConverter,
          aDestination.GetHeight(),
          aDestination.GetDataPointer(),
          static_cast<std::size_t>(krbuffer::GetStrideBytes(destination)),
          aBottomUp,
          StoreKind::Cached};
}

/// False for what is no number, too.
bool IsWithin(double aValue, double aLeast, double aMost) {
  return aValue >= aLeast && aValue <= aMost;
}

std::string ToText(double aValue) {
  std::array<char, 32> text;
  const auto [end, error] = std::to_chars(text.data(), text.data() + text.size(), aValue);
  return {text.data(), error == std::errc() ? end : text.data()};
}

int GetEffectiveThreadCount(int aThreadCount) {
  const int wanted = aThreadCount > 0 ? aThreadCount : static_cast<int>(std::thread::hardware_concurrency());
  return std::clamp(wanted, 1, kMostThreads);
}

} // namespace

struct KrBufferConverter::Body {
  int threadCount = 1;
  std::mutex poolMutex; // Guards the making of the pool, which is used without it.
  std::unique_ptr<WorkerPool> pool;
  ToneStore tones;

  /// The pool where the image is worth it, or null; made when it is first needed.
  WorkerPool* FindPool(const ImageShape& aShape) {
    if (threadCount == 1 || std::uint64_t{aShape.width} * aShape.height < kLeastSharedPixels)
      return nullptr;
    const std::lock_guard lock(poolMutex);
    if (!pool)
      pool = std::make_unique<WorkerPool>(threadCount - 1);
    return pool.get();
  }

  void Run(const Conversion& aConversion, WorkerPool* aPool) const {
    const std::uint64_t height = aConversion.height;
    if (!aPool) {
      aConversion.ConvertLines(0, height);
      return;
    }
    const std::uint64_t parts =
        std::min<std::uint64_t>(height, kPartsPerThread * static_cast<std::uint64_t>(threadCount));
    aPool->Run(static_cast<std::uint32_t>(parts), [&](std::uint32_t aPart) {
      aConversion.ConvertLines(height * aPart / parts, height * (aPart + 1) / parts);
    });
  }

  std::unique_ptr<LineConverter> MakeConverter(const SourceImage& aSource, KrPixelType aWanted) {
    const ImageShape& shape = aSource.shape;
    return krbuffer::MakeLineConverter(
        {aSource.data, static_cast<std::size_t>(krbuffer::GetStrideBytes(shape)), shape.width, shape.height},
        shape.type, aWanted, tones);
  }

  KrResult Convert(const IKrImage& aSource, KrBuffer& aDestination, bool aAllocate, bool aBottomUp) {
    IKrImage* destination = aDestination.GetImage();
    if (!destination)
      return {KrResult::Code::InvalidInput,
              "An image was to be converted into a buffer of another payload type than image. Give one of type image."};
    const SourceImage source = AskSource(aSource);
    const KrPixelType wanted = GetWantedType(*destination);
    if (KrResult result = CheckSource(source, wanted); !result.IsOK())
      return result;
    if (ShareMemory(source, aDestination))
      return {KrResult::Code::InvalidInput,
              "An image was to be converted into the memory that it lies in. Give a destination with its own memory."};
    // Pool and line converter come first: where they cannot be had, the destination is still as it was.
    WorkerPool* workers = FindPool(source.shape);
    const std::unique_ptr<LineConverter> converter = MakeConverter(source, wanted);
    if (KrResult result = FitDestination(source.shape, wanted, *destination, aAllocate); !result.IsOK())
      return result;
    Run(MakeConversion(*converter, *destination, aBottomUp), workers);
    return {};
  }
};

KrBufferConverter::KrBufferConverter(int aThreadCount) : mBody(std::make_unique<Body>()) {
  mBody->threadCount = GetEffectiveThreadCount(aThreadCount);
}

KrBufferConverter::~KrBufferConverter() = default;

int KrBufferConverter::GetThreadCount() const {
  return mBody->threadCount;
}

bool KrBufferConverter::IsConversionSupported(KrPixelType aSource, KrPixelType aDestination) {
  return krbuffer::CanConvertLines(aSource, aDestination);
}

KrResult KrBufferConverter::Convert(const IKrImage* aSource, KrBuffer* aDestination, bool aAllocate,
                                    bool aBottomUp) const {
  if (!aSource || !aDestination)
    return {KrResult::Code::InvalidInput, std::string("An image was to be converted without a ") +
                                              (aSource ? "destination" : "source") + ". Give both."};
  try {
    return mBody->Convert(*aSource, *aDestination, aAllocate, aBottomUp);
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

KrResult KrBufferConverter::SetWhiteBalance(const KrWhiteBalance& aFactors) {
  for (const double factor : {aFactors.red, aFactors.green, aFactors.blue})
    if (!IsWithin(factor, 0, kMostWhiteBalance))
      return {KrResult::Code::InvalidInput,
              "The white balance was to be set with a factor of " + ToText(factor) + ". Give factors from 0 to 16."};
  mBody->tones.ChangeSettings([&aFactors](ToneSettings& aSettings) { aSettings.whiteBalance = aFactors; });
  return {};
}

KrWhiteBalance KrBufferConverter::GetWhiteBalance() const {
  return mBody->tones.GetSettings().whiteBalance;
}

KrResult KrBufferConverter::SetGamma(double aExponent) {
  if (!IsWithin(aExponent, kLeastGamma, kMostGamma))
    return {KrResult::Code::InvalidInput,
            "Gamma was to be set to " + ToText(aExponent) + ". Give an exponent from 0.1 to 10."};
  mBody->tones.ChangeSettings([aExponent](ToneSettings& aSettings) { aSettings.gamma = aExponent; });
  return {};
}

double KrBufferConverter::GetGamma() const {
  return mBody->tones.GetSettings().gamma;
}

KrResult KrBufferConverter::SetSampleWindow(const KrSampleWindow& aWindow) {
  // The difference is a divisor: it must be a number above 0 too.
  if (!std::isfinite(aWindow.high - aWindow.low) || !(aWindow.low < aWindow.high))
    return {KrResult::Code::InvalidInput, "The sample window was to be set from " + ToText(aWindow.low) + " to " +
                                              ToText(aWindow.high) +
                                              ". Give two finite numbers of which the first is the smaller one."};
  mBody->tones.ChangeSettings([&aWindow](ToneSettings& aSettings) { aSettings.window = aWindow; });
  return {};
}

void KrBufferConverter::ResetSampleWindow() {
  mBody->tones.ChangeSettings([](ToneSettings& aSettings) { aSettings.window.reset(); });
}

std::optional<KrSampleWindow> KrBufferConverter::GetSampleWindow() const {
  return mBody->tones.GetSettings().window;
}
