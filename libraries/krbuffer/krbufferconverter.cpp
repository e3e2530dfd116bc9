#include "krbuffer/krbufferconverter.h"

#include "converterbody.h"
#include "kernels/linestores.h"
#include "sourceimage.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <string>
#include <thread>

namespace {

using krbuffer::ImageShape;
using krbuffer::LineConverter;
using krbuffer::SourceImage;
using krbuffer::StoreKind;
using krbuffer::ToneSettings;
using krbuffer::WorkerPool;

constexpr int kMostThreads = 64;
/// From this many pixels on, sharing an image costs less than it saves.
constexpr std::uint64_t kLeastSharedPixels = 256 * 1024;
/// Parts for each thread, so that one that is held up does not hold up the whole image.
constexpr std::uint32_t kPartsPerThread = 4;

constexpr double kMostWhiteBalance = 16;
constexpr double kLeastGamma = 0.1;
constexpr double kMostGamma = 10;

/// The format that the destination's image asks for.
KrPixelType GetWantedType(const IKrImage& aDestination) {
  return aDestination.GetImageSize() != 0 ? aDestination.GetPixelType() : KrPixel::BGRa8;
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
    if (aFirst == aEnd)
      return;
    const auto stride = static_cast<std::ptrdiff_t>(destinationStrideBytes);
    const std::uint64_t target = bottomUp ? height - 1 - aFirst : aFirst;
    converter.ConvertLines(static_cast<std::uint32_t>(aFirst), static_cast<std::uint32_t>(aEnd),
                           destination + destinationStrideBytes * target, bottomUp ? -stride : stride, stores);
    krbuffer::FinishStores(stores);
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
          krbuffer::ChooseStores(krbuffer::GetImageBytes(destination).value_or(0))};
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

WorkerPool* KrBufferConverter::Body::FindPool(const ImageShape& aShape) {
  if (threadCount == 1 || std::uint64_t{aShape.width} * aShape.height < kLeastSharedPixels)
    return nullptr;
  const std::lock_guard lock(poolMutex);
  if (!pool)
    pool = std::make_unique<WorkerPool>(threadCount - 1);
  return pool.get();
}

void KrBufferConverter::Body::ConvertLines(const LineConverter& aConverter, IKrImage& aDestination, bool aBottomUp,
                                           WorkerPool* aPool) const {
  const Conversion conversion = MakeConversion(aConverter, aDestination, aBottomUp);
  const std::uint64_t height = conversion.height;
  if (!aPool) {
    conversion.ConvertLines(0, height);
    return;
  }
  const std::uint64_t parts =
      std::min<std::uint64_t>(height, kPartsPerThread * static_cast<std::uint64_t>(threadCount));
  aPool->Run(static_cast<std::uint32_t>(parts), [&](std::uint32_t aPart) {
    conversion.ConvertLines(height * aPart / parts, height * (aPart + 1) / parts);
  });
}

KrResult KrBufferConverter::Body::Convert(const IKrImage& aSource, KrBuffer& aDestination, bool aAllocate,
                                          bool aBottomUp) {
  IKrImage* destination = aDestination.GetImage();
  if (!destination)
    return {KrResult::Code::InvalidInput,
            "An image was to be converted into a buffer of another payload type than image. Give one of type image."};
  const SourceImage source = krbuffer::AskSource(aSource);
  const KrPixelType wanted = GetWantedType(*destination);
  if (KrResult result = krbuffer::CheckSource(source, wanted); !result.IsOK())
    return result;
  if (krbuffer::ShareMemory(source, aDestination))
    return krbuffer::RefuseSharedMemory();
  // Pool and line converter come first: where they cannot be had, the destination is still as it was.
  WorkerPool* workers = FindPool(source.shape);
  const std::unique_ptr<LineConverter> converter = krbuffer::MakeSourceConverter(source, wanted, tones);
  if (KrResult result = krbuffer::FitDestination(source.shape, wanted, *destination, aAllocate); !result.IsOK())
    return result;
  ConvertLines(*converter, *destination, aBottomUp, workers);
  return {};
}

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
  } catch (...) {
    return krbuffer::ExplainConversionEnd();
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
