#include "displaycase.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <random>
#include <span>
#include <string_view>

namespace benchmarks {

namespace {

struct Format {
  std::string_view name;
  KrPixelType type;
};
constexpr Format kFormats[] = {{"BGRa8", KrPixel::BGRa8},
                               {"Mono8", KrPixel::Mono8},
                               {"BayerRG8", KrPixel::BayerRG8},
                               {"Mono12p", KrPixel::Mono12p}};

std::optional<FrameSize> ParseSize(const std::string& aText) {
  FrameSize size;
  if (std::sscanf(aText.c_str(), "%ux%u", &size.width, &size.height) != 2 || size.width == 0 || size.height == 0)
    return std::nullopt;
  return size;
}

/// Noise that no frame has at the same place, from one block of it.
void FillWithNoise(std::span<std::uint8_t> aBytes, std::size_t aFrame) {
  static const std::vector<std::uint8_t> kNoise = [] {
    std::vector<std::uint8_t> noise(std::size_t(1) << 16);
    std::mt19937 random(5);
    std::generate(noise.begin(), noise.end(), [&] { return static_cast<std::uint8_t>(random()); });
    return noise;
  }();
  std::size_t from = aFrame * 997;
  for (std::size_t begin = 0; begin < aBytes.size();) {
    const std::size_t count = std::min(kNoise.size() - from, aBytes.size() - begin);
    std::memcpy(&aBytes[begin], &kNoise[from], count);
    begin += count;
    from = begin * 31 % 4096;
  }
}

/// The colour of BGRa8 is opaque, as every camera's is.
void MakeOpaque(std::span<std::uint8_t> aBytes) {
  for (std::size_t i = 3; i < aBytes.size(); i += 4)
    aBytes[i] = 0xFF;
}

/// A block of one grey; its edges are at a multiple of two pixels, which begin a byte in every format here.
void DrawShade(KrBuffer& aFrame, const DisplayCase& aCase, std::uint8_t aShade) {
  const std::size_t rowBytes = aFrame.GetSize() / aCase.source.height;
  const auto getByte = [&](std::size_t aColumn) { return aColumn / 2 * 2 * rowBytes / aCase.source.width; };
  const std::size_t begin = getByte(aCase.source.width * 3 / 8);
  const std::size_t end = getByte(aCase.source.width * 5 / 8);
  std::vector<std::uint8_t> row(end - begin, aShade);
  if (aCase.format == KrPixel::BGRa8)
    MakeOpaque(row);
  if (aCase.format == KrPixel::Mono12p) {
    // Two samples of the shade followed by four zero bits, the lower one first.
    for (std::size_t i = 0; i + 2 < row.size(); i += 3) {
      row[i] = static_cast<std::uint8_t>(aShade << 4);
      row[i + 1] = aShade >> 4;
    }
  }
  for (std::size_t y = aCase.source.height * 3 / 8; y < aCase.source.height * 5 / 8; ++y)
    std::memcpy(aFrame.GetDataPointer() + y * rowBytes + begin, row.data(), row.size());
}

} // namespace

FrameSize DisplayCase::GetShownSize() const {
  const double factor = std::min(double(window.width) / source.width, double(window.height) / source.height);
  return {static_cast<std::uint32_t>(source.width * factor + 0.5),
          static_cast<std::uint32_t>(source.height * factor + 0.5)};
}

std::optional<DisplayCase> ParseDisplayCase(const std::vector<std::string>& aWords) {
  if (aWords.size() != 3)
    return std::nullopt;
  const auto* format = std::find_if(std::begin(kFormats), std::end(kFormats),
                                    [&](const Format& aFormat) { return aFormat.name == aWords[0]; });
  const std::optional<FrameSize> source = ParseSize(aWords[1]);
  const std::optional<FrameSize> window = ParseSize(aWords[2]);
  if (format == std::end(kFormats) || !source || !window)
    return std::nullopt;
  return DisplayCase{.format = format->type, .source = *source, .window = *window};
}

FrameRing::FrameRing(const DisplayCase& aCase) {
  for (std::size_t i = 0; i < kCount; ++i) {
    auto frame = std::make_shared<KrBuffer>();
    if (!frame->GetImage()->Alloc(aCase.source.width, aCase.source.height, aCase.format).IsOK()) {
      std::fprintf(stderr, "There is no memory for the frames.\n");
      std::exit(1);
    }
    const std::span<std::uint8_t> bytes(frame->GetDataPointer(), frame->GetSize());
    FillWithNoise(bytes, i);
    if (aCase.format == KrPixel::BGRa8)
      MakeOpaque(bytes);
    DrawShade(*frame, aCase, GetShade(i));
    mFrames.push_back(std::move(frame));
  }
}

} // namespace benchmarks
