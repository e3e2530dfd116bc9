#include "panels/imagecutout.h"

#include <algorithm>
#include <cstring>
#include <optional>
#include <string>

namespace krviewer {

namespace {

constexpr std::uint32_t kColumnAlignment = 8;
// Two aligned groups: where the chroma of the last pixels is cut off, that of the group before them is there.
constexpr std::uint32_t kColumnsOfColumn = 2 * kColumnAlignment;

/// Lines in pairs, so spread over the height that they are at most so many.
void SpreadLines(Cutout& aCutout, std::uint32_t aHeight, std::uint32_t aMostLines) {
  const std::uint64_t pairs = (std::uint64_t{aHeight} + 1) / 2;
  const std::uint64_t mostPairs = std::max<std::uint32_t>(aMostLines / 2, 1);
  const std::uint64_t step = (pairs + mostPairs - 1) / mostPairs;
  const std::uint64_t taken = (pairs + step - 1) / step;
  // The last pair of an odd height has one line alone.
  const bool endsWithHalf = aHeight % 2 != 0 && (taken - 1) * step + 1 == pairs;
  aCutout.pairStep = static_cast<std::uint32_t>(2 * step);
  aCutout.lines = static_cast<std::uint32_t>(2 * taken - (endsWithHalf ? 1 : 0));
}

std::string GetFormatName(KrPixelType aType) {
  const std::optional<KrPixelTypeInfo> format = KrFindPixelType(aType);
  return format ? std::string(format->name) : "the format with the number " + std::to_string(aType);
}

/// How the lines of an image lie in memory.
struct LinePlaces {
  std::uint64_t bitsPerPixel; ///< In one plane.
  std::uint64_t strideBytes;
  std::uint64_t planes;

  LinePlaces(std::uint32_t aWidth, const KrPixelTypeInfo& aFormat, std::uint32_t aPaddingX)
      : planes(aFormat.layout == KrPixelLayout::RGBPlanar ? 3 : 1) {
    bitsPerPixel = aFormat.bitsPerPixel / planes;
    strideBytes = CountBytes(aWidth) + aPaddingX;
  }
  std::uint64_t CountBytes(std::uint64_t aColumns) const { return (aColumns * bitsPerPixel + 7) / 8; }
};

KrResult CheckPlaces(const IKrImage& aImage, const Cutout& aCutout, const LinePlaces& aPlaces) {
  const std::uint64_t width = aImage.GetWidth();
  const std::uint64_t height = aImage.GetHeight();
  const bool isWithin = aCutout.columns > 0 && aCutout.lines > 0 &&
                        std::uint64_t{aCutout.firstColumn} + aCutout.columns <= width &&
                        aCutout.firstColumn % kColumnAlignment == 0 && aCutout.GetImageLine(aCutout.lines - 1) < height;
  // Divided rather than multiplied, as 64 bits need not hold the product.
  const std::uint64_t linesThere = aPlaces.strideBytes > 0 ? aImage.GetImageSize() / aPlaces.strideBytes : 0;
  if (isWithin && aImage.GetDataPointer() && linesThere / aPlaces.planes >= height)
    return {};
  return {KrResult::Code::BadData, "A part of a frame of " + std::to_string(width) + " x " + std::to_string(height) +
                                       " pixels was to be copied, but the frame does not hold it."};
}

} // namespace

bool Cutout::Holds(const CutoutRequest& aRequest, std::uint32_t aWidth, std::uint32_t aHeight) const {
  if (aWidth == 0 || aHeight == 0 || lines == 0)
    return false;
  const Cutout wanted = PlanCutout(aRequest, aWidth, aHeight);
  const bool hasColumns = wanted.firstColumn >= firstColumn &&
                          std::uint64_t{wanted.firstColumn} + wanted.columns <= std::uint64_t{firstColumn} + columns;
  const bool hasLines =
      wanted.firstLine >= firstLine && wanted.GetImageLine(wanted.lines - 1) <= GetImageLine(lines - 1);
  // Lines that were left out are in none but a cutout that leaves out the same.
  const bool hasSameSteps = pairStep == 2 || (wanted.firstLine == firstLine && wanted.pairStep == pairStep);
  return hasColumns && hasLines && hasSameSteps;
}

Cutout PlanCutout(const CutoutRequest& aRequest, std::uint32_t aWidth, std::uint32_t aHeight) {
  Cutout cutout{.columns = aWidth, .lines = aHeight};
  if (aWidth == 0 || aHeight == 0)
    return cutout;
  switch (aRequest.kind) {
  case CutoutRequest::Kind::Sample:
    cutout.columns = std::min(aWidth, kSamplePixels / 2);
    SpreadLines(cutout, aHeight, kSamplePixels / cutout.columns);
    break;
  case CutoutRequest::Kind::Line:
    cutout.columns = std::min(aWidth, kProfilePixels);
    cutout.firstLine = static_cast<std::uint32_t>(std::min<std::uint64_t>(aRequest.index, aHeight - 1)) & ~1u;
    cutout.lines = std::min(aHeight - cutout.firstLine, 2u);
    break;
  case CutoutRequest::Kind::Column: {
    const auto column = static_cast<std::uint32_t>(std::min<std::uint64_t>(aRequest.index, aWidth - 1));
    const std::uint32_t aligned = column - column % kColumnAlignment;
    cutout.firstColumn = aligned >= kColumnAlignment ? aligned - kColumnAlignment : 0;
    cutout.columns = std::min(aWidth - cutout.firstColumn, kColumnsOfColumn);
    SpreadLines(cutout, aHeight, kProfilePixels);
    break;
  }
  case CutoutRequest::Kind::Whole:
    if (std::uint64_t{aWidth} * aHeight > kWholePixels)
      return PlanCutout({CutoutRequest::Kind::Sample}, aWidth, aHeight);
    break;
  }
  return cutout;
}

KrResult CopyCutout(const IKrImage& aImage, const Cutout& aCutout, KrBuffer& aCopy) {
  const KrPixelType type = aImage.GetPixelType();
  const std::optional<KrPixelTypeInfo> format = KrFindPixelType(type);
  if (!format || format->layout == KrPixelLayout::Other || format->packing == KrPixelPacking::Other)
    return {KrResult::Code::NotSupported, "The values of " + GetFormatName(type) +
                                              " cannot be told apart. Set the camera to a mono, Bayer, RGB or YUV "
                                              "format."};
  const LinePlaces from(aImage.GetWidth(), *format, aImage.GetPaddingX());
  if (KrResult checked = CheckPlaces(aImage, aCutout, from); !checked.IsOK())
    return checked;
  IKrImage* copy = aCopy.GetImage();
  if (!copy || copy->GetWidth() != aCutout.columns || copy->GetHeight() != aCutout.lines ||
      copy->GetPixelType() != type) {
    aCopy.SetPayloadType(KrPayloadType::Image);
    copy = aCopy.GetImage();
    if (KrResult allocated = copy->Alloc(aCutout.columns, aCutout.lines, type); !allocated.IsOK())
      return allocated;
  }
  const LinePlaces to(aCutout.columns, *format, 0);
  std::uint8_t* line = copy->GetDataPointer();
  for (std::uint64_t plane = 0; plane < from.planes; ++plane)
    for (std::uint32_t i = 0; i < aCutout.lines; ++i, line += to.strideBytes)
      std::memcpy(line,
                  aImage.GetDataPointer() + (plane * aImage.GetHeight() + aCutout.GetImageLine(i)) * from.strideBytes +
                      from.bitsPerPixel * aCutout.firstColumn / 8,
                  to.strideBytes);
  return {};
}

} // namespace krviewer
