#include "lumachroma.h"

#include "bgrapixel.h"
#include "kernels/lumachromareaders.h"

#include <algorithm>
#include <array>

namespace krbuffer {

namespace {

/// Where the bytes of a group of pixels are.
struct Group {
  KrPixelLayout layout;
  std::size_t bytes;
  std::size_t pixels;
  std::array<std::size_t, 4> luma;
  std::size_t u;
  std::size_t v;
};

constexpr std::array kGroups = {
    Group{KrPixelLayout::YUV, 3, 1, {0}, 1, 2},
    Group{KrPixelLayout::UYV, 3, 1, {1}, 0, 2},
    Group{KrPixelLayout::YUYV, 4, 2, {0, 2}, 1, 3},
    Group{KrPixelLayout::UYVY, 4, 2, {1, 3}, 0, 2},
    Group{KrPixelLayout::UYYVYY, 6, 4, {1, 2, 4, 5}, 0, 3},
    Group{KrPixelLayout::YYUYYV, 6, 4, {0, 1, 3, 4}, 2, 5},
};

/// Factors as integers over one denominator, so that the nearest byte is found exactly.
struct Matrix {
  KrColorSpace space;
  std::int64_t denominator;
  std::int64_t lumaOffset;
  std::int64_t luma;
  std::int64_t redV;
  std::int64_t greenU;
  std::int64_t greenV;
  std::int64_t blueU;
};

/// The parts of red and blue in luma, in ten-thousandths, as ITU-R BT.601 and BT.709 give them.
struct LumaParts {
  std::int64_t red;
  std::int64_t blue;
};

constexpr LumaParts kParts601{2990, 1140};
constexpr LumaParts kParts709{2126, 722};

constexpr Matrix MakeFullMatrix(KrColorSpace aSpace, LumaParts aParts) {
  constexpr std::int64_t kOne = 10000;
  const std::int64_t green = kOne - aParts.red - aParts.blue;
  const std::int64_t denominator = kOne * green;
  return {aSpace,
          denominator,
          0,
          denominator,
          2 * (kOne - aParts.red) * green,
          -2 * aParts.blue * (kOne - aParts.blue),
          -2 * aParts.red * (kOne - aParts.red),
          2 * (kOne - aParts.blue) * green};
}

/// Luma from 16 to 235 and chroma from 16 to 240 instead of 0 to 255.
constexpr Matrix MakeVideoMatrix(KrColorSpace aSpace, LumaParts aParts) {
  constexpr std::int64_t kFull = 255;
  constexpr std::int64_t kLuma = 235 - 16;
  constexpr std::int64_t kChroma = 240 - 16;
  const Matrix full = MakeFullMatrix(aSpace, aParts);
  return {aSpace,
          full.denominator * kLuma * kChroma,
          16,
          full.luma * kFull * kChroma,
          full.redV * kFull * kLuma,
          full.greenU * kFull * kLuma,
          full.greenV * kFull * kLuma,
          full.blueU * kFull * kLuma};
}

constexpr std::array kMatrices = {
    MakeFullMatrix(KrColorSpace::Full601, kParts601),
    MakeVideoMatrix(KrColorSpace::Video601, kParts601),
    MakeVideoMatrix(KrColorSpace::Video709, kParts709),
};

/// What chroma adds to luma in each colour, over the matrix's denominator; half of that is in it, for rounding.
struct Chroma {
  std::int64_t blue;
  std::int64_t green;
  std::int64_t red;
};

template <std::size_t MatrixIndex>
Chroma GetChroma(std::uint8_t aU, std::uint8_t aV) {
  constexpr Matrix kMatrix = kMatrices[MatrixIndex];
  constexpr std::int64_t kHalf = kMatrix.denominator / 2;
  constexpr int kNone = 128;
  const std::int64_t u = aU - kNone;
  const std::int64_t v = aV - kNone;
  return {kMatrix.blueU * u + kHalf, kMatrix.greenU * u + kMatrix.greenV * v + kHalf, kMatrix.redV * v + kHalf};
}

template <std::size_t MatrixIndex>
void StoreLumaChroma(std::uint8_t* aPixel, std::uint8_t aLuma, const Chroma& aChroma) {
  constexpr Matrix kMatrix = kMatrices[MatrixIndex];
  const std::int64_t luma = kMatrix.luma * (aLuma - kMatrix.lumaOffset);
  const auto toByte = [luma](std::int64_t aColour) {
    const std::int64_t sum = std::max<std::int64_t>(0, luma + aColour);
    return static_cast<std::uint32_t>(std::min<std::int64_t>(255, sum / kMatrix.denominator));
  };
  StoreBgra(aPixel, toByte(aChroma.blue), toByte(aChroma.green), toByte(aChroma.red), kOpaque);
}

template <std::size_t GroupIndex, std::size_t MatrixIndex>
void ReadLumaChroma(const LineSource& aSource, std::uint32_t aLine, std::uint8_t* aBgra, StoreKind) {
  constexpr Group kGroup = kGroups[GroupIndex];
  const std::uint8_t* bytes = aSource.GetLine(aLine);
  std::size_t bytesLeft = (aSource.width * kGroup.bytes + kGroup.pixels - 1) / kGroup.pixels;
  std::size_t pixelsLeft = aSource.width;
  Chroma chroma = GetChroma<MatrixIndex>(128, 128);
  while (pixelsLeft > 0) {
    if (bytesLeft > std::max(kGroup.u, kGroup.v))
      chroma = GetChroma<MatrixIndex>(bytes[kGroup.u], bytes[kGroup.v]);
    const std::size_t pixels = std::min(pixelsLeft, kGroup.pixels);
    for (std::size_t i = 0; i < pixels; ++i)
      StoreLumaChroma<MatrixIndex>(aBgra + kBgraBytes * i, bytes[kGroup.luma[i]], chroma);
    aBgra += kBgraBytes * pixels;
    pixelsLeft -= pixels;
    bytes += kGroup.bytes;
    bytesLeft -= std::min(bytesLeft, kGroup.bytes);
  }
}

template <std::size_t MatrixIndex>
constexpr std::array<LineReader, kGroups.size()> kReadersOfMatrix = {
    &ReadLumaChroma<0, MatrixIndex>, &ReadLumaChroma<1, MatrixIndex>, &ReadLumaChroma<2, MatrixIndex>,
    &ReadLumaChroma<3, MatrixIndex>, &ReadLumaChroma<4, MatrixIndex>, &ReadLumaChroma<5, MatrixIndex>};

constexpr std::array<std::array<LineReader, kGroups.size()>, kMatrices.size()> kReaders = {
    kReadersOfMatrix<0>, kReadersOfMatrix<1>, kReadersOfMatrix<2>};

} // namespace

LineReader FindLumaChromaReader(const KrPixelTypeInfo& aFormat) {
  if (const LineReader reader = FindLumaChromaVectorReader(aFormat))
    return reader;
  const auto group = std::find_if(kGroups.begin(), kGroups.end(),
                                  [&aFormat](const Group& aGroup) { return aGroup.layout == aFormat.layout; });
  const auto matrix = std::find_if(kMatrices.begin(), kMatrices.end(),
                                   [&aFormat](const Matrix& aMatrix) { return aMatrix.space == aFormat.colorSpace; });
  if (group == kGroups.end() || matrix == kMatrices.end() || aFormat.bitsPerSample != 8)
    return nullptr;
  return kReaders[static_cast<std::size_t>(matrix - kMatrices.begin())]
                 [static_cast<std::size_t>(group - kGroups.begin())];
}

} // namespace krbuffer
