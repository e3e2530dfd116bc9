#include "lineconverter.h"

#include "bgracopier.h"
#include "byteconverter.h"
#include "deepbayerconverter.h"
#include "deepconverter.h"
#include "fewbitsconverter.h"
#include "floatconverter.h"
#include "tonestore.h"
#include "topbyteconverter.h"
#include "unpacker.h"

#include <utility>

namespace krbuffer {

namespace {

bool IsGreyOfFloats(const KrPixelTypeInfo& aFormat) {
  return aFormat.sampleKind == KrSampleKind::Float && aFormat.bitsPerSample == 32 &&
         aFormat.layout == KrPixelLayout::Mono;
}

/// True for formats whose samples can be read at their full depth and then reduced.
bool IsDeep(const KrPixelTypeInfo& aFormat) {
  return FindSampleReader(aFormat) != nullptr &&
         (aFormat.layout == KrPixelLayout::Mono || FindDeepReader(aFormat.layout) != nullptr);
}

bool CanConvertToBgra(const KrPixelTypeInfo& aFormat) {
  return FindLineReader(aFormat) != nullptr || IsDeep(aFormat) || IsGreyOfFloats(aFormat);
}

std::unique_ptr<LineConverter> MakeGreyConverter(const LineSource& aSource, const KrPixelTypeInfo& aFormat,
                                                 std::shared_ptr<const ToneTables> aTables) {
  if (const FewBitsReader reader = FindFewBitsReader(aFormat))
    return std::make_unique<FewBitsConverter>(aSource, reader, aFormat.bitsPerSample, *aTables);
  return std::make_unique<DeepGreyConverter>(aSource, FindSampleReader(aFormat), std::move(aTables));
}

std::unique_ptr<LineConverter> MakeDeepConverter(const LineSource& aSource, const KrPixelTypeInfo& aFormat,
                                                 std::shared_ptr<const ToneTables> aTables) {
  const SampleReader samples = FindSampleReader(aFormat);
  if (!aTables && DeepBayerConverter::CanConvert(aSource, aFormat))
    return std::make_unique<DeepBayerConverter>(aSource, samples, aFormat);
  if (!aTables)
    if (std::unique_ptr<LineConverter> converter = TopByteConverter::Make(aSource, aFormat))
      return converter;
  if (aFormat.layout == KrPixelLayout::Mono)
    return MakeGreyConverter(aSource, aFormat, std::move(aTables));
  return std::make_unique<DeepColourConverter>(aSource, samples, FindDeepReader(aFormat.layout), aFormat.bitsPerSample,
                                               std::move(aTables));
}

std::unique_ptr<LineConverter> MakeBgraConverter(const LineSource& aSource, const KrPixelTypeInfo& aFormat,
                                                 ToneStore& aTones) {
  if (IsGreyOfFloats(aFormat))
    return std::make_unique<FloatConverter>(aSource, aTones.GetSettings());
  const ToneDepth depth = GetToneDepth(aFormat);
  std::shared_ptr<const ToneTables> tables = aTones.GetTables(depth);
  // A reader of whole lines gives bytes: tables for more than that need the samples themselves.
  const LineReader reader = FindLineReader(aFormat);
  if (reader && !tables && aFormat.type == KrPixel::BGRa8)
    return std::make_unique<BgraCopier>(aSource, reader);
  const bool isGreyByTable = tables && aFormat.layout == KrPixelLayout::Mono;
  if (reader && !isGreyByTable && (!tables || depth.bits == 8))
    return std::make_unique<ByteConverter>(aSource, reader, std::move(tables));
  return MakeDeepConverter(aSource, aFormat, std::move(tables));
}

} // namespace

void LineConverter::ConvertLines(std::uint32_t aFirst, std::uint32_t aEnd, std::uint8_t* aDestination,
                                 std::ptrdiff_t aStrideBytes, StoreKind aStores) const {
  for (std::uint32_t line = aFirst; line < aEnd; ++line)
    ConvertLine(line, aDestination + aStrideBytes * static_cast<std::ptrdiff_t>(line - aFirst), aStores);
}

bool CanConvertLines(KrPixelType aSource, KrPixelType aDestination) {
  if (aDestination != KrPixel::BGRa8)
    return CanUnpack(aSource, aDestination);
  const std::optional<KrPixelTypeInfo> format = KrFindPixelType(aSource);
  return format && CanConvertToBgra(*format);
}

std::unique_ptr<LineConverter> MakeLineConverter(const LineSource& aSource, KrPixelType aSourceType,
                                                 KrPixelType aDestinationType, ToneStore& aTones) {
  if (aDestinationType != KrPixel::BGRa8)
    return MakeUnpacker(aSource, aSourceType, aDestinationType);
  const std::optional<KrPixelTypeInfo> format = KrFindPixelType(aSourceType);
  if (!format || !CanConvertToBgra(*format))
    return nullptr;
  return MakeBgraConverter(aSource, *format, aTones);
}

} // namespace krbuffer
