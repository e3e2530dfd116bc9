#include "tiffframe.h"

#include "framedescription.h"
#include "krbuffer/krbufferconverter.h"
#include "shownimage.h"
#include "tiffstream.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <optional>
#include <utility>

namespace krapps {

namespace {

constexpr std::uint64_t kMostPlainBytes = 0xFFF00000; // Offsets of plain TIFF have 32 bits; tags need some, too.
constexpr std::uint64_t kStripBytes = 256 * 1024;

struct LayoutRow {
  KrPixelLayout layout;
  std::uint16_t samples;
  bool isBlueFirst;
};

// What has a place in a TIFF: one sample a pixel, or red, green, blue and perhaps alpha.
constexpr std::array kLayouts = {
    LayoutRow{KrPixelLayout::Mono, 1, false},    LayoutRow{KrPixelLayout::BayerGR, 1, false},
    LayoutRow{KrPixelLayout::BayerRG, 1, false}, LayoutRow{KrPixelLayout::BayerGB, 1, false},
    LayoutRow{KrPixelLayout::BayerBG, 1, false}, LayoutRow{KrPixelLayout::RGB, 3, false},
    LayoutRow{KrPixelLayout::BGR, 3, true},      LayoutRow{KrPixelLayout::RGBa, 4, false},
    LayoutRow{KrPixelLayout::BGRa, 4, true},
};

struct KindRow {
  KrSampleKind kind;
  std::uint16_t tag;
};

constexpr std::array kKinds = {KindRow{KrSampleKind::Unsigned, SAMPLEFORMAT_UINT},
                               KindRow{KrSampleKind::Signed, SAMPLEFORMAT_INT},
                               KindRow{KrSampleKind::Float, SAMPLEFORMAT_IEEEFP}};

/// How the samples of an unpacked format lie in a TIFF.
struct TiffForm {
  KrPixelType type;
  std::uint16_t samples;
  std::uint16_t bitsPerSample;
  std::uint16_t sampleFormat;
  bool isBlueFirst;
};

std::optional<TiffForm> FindForm(KrPixelType aUnpacked) {
  const std::optional<KrPixelTypeInfo> info = KrFindPixelType(aUnpacked);
  const auto layout = std::find_if(kLayouts.begin(), kLayouts.end(),
                                   [&](const LayoutRow& aRow) { return info && aRow.layout == info->layout; });
  if (layout == kLayouts.end())
    return std::nullopt;
  const auto kind =
      std::find_if(kKinds.begin(), kKinds.end(), [&](const KindRow& aRow) { return aRow.kind == info->sampleKind; });
  return TiffForm{aUnpacked, layout->samples, static_cast<std::uint16_t>(info->bitsPerPixel / layout->samples),
                  kind->tag, layout->isBlueFirst};
}

/// The form in which an image's own samples can be written, or nothing.
std::optional<TiffForm> FindOwnForm(KrPixelType aType) {
  const std::optional<KrPixelType> unpacked = KrGetUnpackedPixelType(aType);
  if (!unpacked || !KrBufferConverter::IsConversionSupported(aType, *unpacked))
    return std::nullopt;
  return FindForm(*unpacked);
}

template <typename Word>
void SwapRedAndBlue(void* aPixels, std::size_t aPixelCount, std::size_t aSamples) {
  Word* pixel = static_cast<Word*>(aPixels);
  for (std::size_t index = 0; index < aPixelCount; ++index, pixel += aSamples)
    std::swap(pixel[0], pixel[2]);
}

// Makes the samples to be written, in an image of the form's type.
KrResult MakeSamples(const IKrImage& aImage, const std::optional<TiffForm>& aForm, KrBuffer& aSamples) {
  if (!aForm)
    return MakeShownImage(aImage, aSamples);
  IKrImage* const samples = aSamples.GetImage();
  if (KrResult made = samples->Alloc(aImage.GetWidth(), aImage.GetHeight(), aForm->type); !made.IsOK())
    return made;
  if (KrResult converted = KrBufferConverter().Convert(&aImage, &aSamples, false, false); !converted.IsOK())
    return converted;
  const std::size_t pixels = std::size_t{aImage.GetWidth()} * aImage.GetHeight();
  if (aForm->isBlueFirst && aForm->bitsPerSample == 8)
    SwapRedAndBlue<std::uint8_t>(aSamples.GetDataPointer(), pixels, aForm->samples);
  else if (aForm->isBlueFirst)
    SwapRedAndBlue<std::uint16_t>(aSamples.GetDataPointer(), pixels, aForm->samples);
  return {};
}

void SetTags(TiffStream& aStream, const IKrImage& aImage, const TiffForm& aForm, std::uint32_t aLinesPerStrip) {
  TIFF* const tiff = aStream.Get();
  const auto set = [&aStream, tiff](std::uint32_t aTag, auto... aValues) {
    aStream.Note(TIFFSetField(tiff, aTag, aValues...) == 1);
  };
  set(TIFFTAG_IMAGEWIDTH, aImage.GetWidth());
  set(TIFFTAG_IMAGELENGTH, aImage.GetHeight());
  set(TIFFTAG_BITSPERSAMPLE, int{aForm.bitsPerSample});
  set(TIFFTAG_SAMPLESPERPIXEL, int{aForm.samples});
  set(TIFFTAG_SAMPLEFORMAT, int{aForm.sampleFormat});
  set(TIFFTAG_PHOTOMETRIC, aForm.samples == 1 ? PHOTOMETRIC_MINISBLACK : PHOTOMETRIC_RGB);
  set(TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG);
  set(TIFFTAG_COMPRESSION, COMPRESSION_NONE);
  set(TIFFTAG_ORIENTATION, ORIENTATION_TOPLEFT);
  set(TIFFTAG_ROWSPERSTRIP, aLinesPerStrip);
  const std::uint16_t alpha = EXTRASAMPLE_UNASSALPHA;
  if (aForm.samples == 4)
    set(TIFFTAG_EXTRASAMPLES, 1U, &alpha);
}

void WriteLines(TiffStream& aStream, KrBuffer& aSamples, std::size_t aLineBytes) {
  std::uint8_t* line = aSamples.GetDataPointer();
  const std::uint32_t height = aSamples.GetImage()->GetHeight();
  bool isOK = true;
  for (std::uint32_t index = 0; index < height && isOK; ++index, line += aLineBytes)
    isOK = TIFFWriteScanline(aStream.Get(), line, index, 0) == 1;
  aStream.Note(isOK);
}

} // namespace

bool HasTiffForm(KrPixelType aType) {
  return FindOwnForm(aType).has_value();
}

KrResult WriteTiff(const KrBuffer& aFrame, const FrameFileOptions& aOptions, KrAtomicFile& aFile) {
  const std::optional<TiffForm> ownForm = FindOwnForm(aFrame.GetImage()->GetPixelType());
  KrBuffer samples;
  if (KrResult made = MakeSamples(*aFrame.GetImage(), ownForm, samples); !made.IsOK())
    return {made.GetCode(), "The file \"" + aOptions.fileName + "\" cannot be written: " + made.GetDescription()};
  const IKrImage& image = *samples.GetImage();
  const TiffForm form = ownForm ? *ownForm : *FindForm(image.GetPixelType());

  const std::size_t lineBytes = std::size_t{image.GetWidth()} * form.samples * form.bitsPerSample / 8;
  TiffStream stream(aFile, std::uint64_t{lineBytes} * image.GetHeight() > kMostPlainBytes);
  if (stream.Get()) {
    const std::string description = DescribeFrame(aFrame, aOptions);
    const auto linesPerStrip = static_cast<std::uint32_t>(std::max<std::uint64_t>(kStripBytes / lineBytes, 1));
    SetTags(stream, image, form, linesPerStrip);
    stream.Note(TIFFSetField(stream.Get(), TIFFTAG_SOFTWARE, aOptions.software.CStr()) == 1);
    stream.Note(TIFFSetField(stream.Get(), TIFFTAG_IMAGEDESCRIPTION, description.c_str()) == 1);
    WriteLines(stream, samples, lineBytes);
  }
  return stream.Finish(aOptions.fileName);
}

} // namespace krapps
