#pragma once
// What a conversion asks of its source and its destination before it begins, and what it says where they do not do.
// The conversion itself is left to the line converters.

#include "imagelayout.h"
#include "krbase/krresult.h"
#include "krbuffer/krbuffer.h"
#include "lineconverter.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

namespace krbuffer {

/// What a source says of itself, asked once: an application's own image may answer differently every time.
struct SourceImage {
  ImageShape shape;
  const std::uint8_t* data = nullptr;
  std::size_t bytes = 0;
};

/// The name of a format, or its number where it has none.
std::string GetTypeText(KrPixelType aType);

SourceImage AskSource(const IKrImage& aSource);

/// InvalidInput without pixels, NotSupported for formats that cannot be converted, BadData for too few bytes.
KrResult CheckSource(const SourceImage& aSource, KrPixelType aWanted);

/// True when writing or replacing the destination's memory would change the source, which is known to be complete.
bool ShareMemory(const SourceImage& aSource, const KrBuffer& aDestination);
KrResult RefuseSharedMemory();

/// Makes the destination an image of the source's size and of this format, where it is none and may be allocated.
KrResult FitDestination(const ImageShape& aSource, KrPixelType aWanted, IKrImage& aDestination, bool aAllocate);

/// A line converter for a source that was checked; never null.
std::unique_ptr<LineConverter> MakeSourceConverter(const SourceImage& aSource, KrPixelType aWanted, ToneStore& aTones);

/// What became of a conversion that the exception being handled has ended. Within a catch block alone.
KrResult ExplainConversionEnd();

} // namespace krbuffer
