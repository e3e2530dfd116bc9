// How long does the conversion of one image to BGRa8 take? The physical limit, and the first peer, is a memset of the
// destination; OpenCV and libyuv follow where they have the conversion and were there when this was configured.
// Ours and its peer take turns, as the machine is never the same for long. With memset_of_destination they do so run by
// run, so that each meets the destination as the other one left it: not in the cache, where that is written past it.
// With all other peers a turn is several runs, and each meets the destination as it left it itself; the memset measured
// in this way is memset_alone. The growth is that of a pixel's time from the small image to the large one.

#include "checked.h"
#include "convertpeers.h"
#include "figure.h"
#include "growth.h"
#include "krbuffer/krbufferconverter.h"
#include "timing.h"

#include <algorithm>
#include <cstring>
#include <optional>
#include <string>
#include <string_view>

namespace {

using benchmarks::Check;
using benchmarks::ConversionTask;
using benchmarks::PeerConversion;

struct Size {
  std::uint32_t width, height;
};

constexpr Size kSmall = {1920, 1080};
constexpr Size kLarge = {4096, 3000};
constexpr const char* kLimitPeer = "memset_of_destination";

/// One of each layout, packing, depth and colour space that are converted. The formats that are not named are equal to
/// one of these in memory, or have their colours in another order: planes, coordinates, confidences and data are as
/// Mono, the Bayer formats as those beginning with red and green.
constexpr std::string_view kFormats[] = {
    "Mono1p",
    "Mono2p",
    "Mono4p",
    "Mono8",
    "Mono8s",
    "Mono10",
    "Mono12",
    "Mono14",
    "Mono16",
    "Data16s",
    "Mono10p",
    "Mono12p",
    "Mono14p",
    "Mono10Packed",
    "Mono12Packed",
    "Confidence1",
    "Coord3D_C32f",
    "BayerRG4p",
    "BayerRG8",
    "BayerRG10",
    "BayerRG12",
    "BayerRG14",
    "BayerRG16",
    "BayerRG10p",
    "BayerRG12p",
    "BayerRG14p",
    "BayerRG10Packed",
    "BayerRG12Packed",
    "RGB8",
    "BGR8",
    "RGBa8",
    "BGRa8",
    "RGB565p",
    "BGR565p",
    "RGB8_Planar",
    "RGB10",
    "RGB12",
    "RGB14",
    "RGB16",
    "RGB10p",
    "RGB12p",
    "RGB10_Planar",
    "RGB12_Planar",
    "RGB16_Planar",
    "YUV411_8_UYYVYY",
    "YCbCr411_8",
    "YUV422_8",
    "YUV422_8_UYVY",
    "YUV8_UYV",
    "YCbCr8",
    "YCbCr601_422_8",
    "YCbCr601_422_8_CbYCrY",
    "YCbCr601_8_CbYCr",
    "YCbCr601_411_8_CbYYCrYY",
    "YCbCr709_422_8",
    "YCbCr709_422_8_CbYCrY",
    "YCbCr709_8_CbYCr",
    "YCbCr709_411_8_CbYYCrYY",
};

void Fill(KrBuffer& aBuffer) {
  for (std::size_t i = 0; i < aBuffer.GetSize(); ++i)
    aBuffer.GetDataPointer()[i] = static_cast<std::uint8_t>(i * 7 + i / 1000);
}

/// The peers' YUV uses a part of the range alone, as our formats with a number do.
std::string GetPeerName(const char* aLibrary, const KrPixelTypeInfo& aFormat) {
  return std::string(aLibrary) + (aFormat.colorSpace == KrColorSpace::Full601 ? "_limited_range" : "");
}

std::string MakeName(const KrPixelTypeInfo& aFormat, const std::string& aSize, int aThreads) {
  return "convert_" + std::string(aFormat.name) + "_" + aSize + std::to_string(aThreads) + "t";
}

/// Prints the figures; returns what the image costs beside the filling of its destination.
benchmarks::SizedCost Measure(const Size& aSize, const KrPixelTypeInfo& aFormat, int aThreads) {
  KrBuffer source;
  KrBuffer destination;
  Check(source.GetImage()->Alloc(aSize.width, aSize.height, aFormat.type));
  Check(destination.GetImage()->Alloc(aSize.width, aSize.height, KrPixel::BGRa8));
  Fill(source);
  const KrBufferConverter converter(aThreads);
  const std::string name = MakeName(aFormat, std::to_string(aSize.width) + "x" + std::to_string(aSize.height) + "_",
                                    converter.GetThreadCount());
  const auto convert = [&] { Check(converter.Convert(source.GetImage(), &destination, false, false)); };
  const auto fillDestination = [&] { std::memset(destination.GetDataPointer(), 0x55, destination.GetSize()); };
  constexpr int kRunsPerTurn = 4;
  const auto timing = aThreads == 1 ? benchmarks::Timing::Thread : benchmarks::Timing::Wall;
  const auto measureBeside = [&](const std::string& aPeer, int aRunsPerTurn, const auto& aPeerWork) {
    const auto [time, peerTime] = benchmarks::MeasureInTurnsMs(timing, aRunsPerTurn, convert, aPeerWork);
    benchmarks::PrintFigure({name, time, "ms", benchmarks::Peer{aPeer, peerTime}});
    return benchmarks::SizedCost{static_cast<double>(aSize.width) * aSize.height, time, peerTime};
  };

  const benchmarks::SizedCost cost = measureBeside(kLimitPeer, 1, fillDestination);
  measureBeside("memset_alone", kRunsPerTurn, fillDestination);
  const ConversionTask task{aFormat.type, aSize.width, aSize.height, source.GetDataPointer(),
                            destination.GetDataPointer()};
  if (const PeerConversion peer = benchmarks::FindOpenCVConversion(task, aThreads))
    measureBeside(GetPeerName("opencv", aFormat), kRunsPerTurn, peer);
  if (const PeerConversion peer = benchmarks::FindLibyuvConversion(task); peer && aThreads == 1)
    measureBeside(GetPeerName("libyuv", aFormat), kRunsPerTurn, peer);
  return cost;
}

void MeasureSizes(const KrPixelTypeInfo& aFormat, int aThreads) {
  const benchmarks::SizedCost small = Measure(kSmall, aFormat, aThreads);
  const benchmarks::SizedCost large = Measure(kLarge, aFormat, aThreads);
  benchmarks::PrintGrowth(MakeName(aFormat, "", aThreads), small, large, kLimitPeer);
}

} // namespace

/// All formats, or those that are named.
int main(int aCount, char** aNames) {
  int measured = 0;
  for (const std::string_view name : kFormats) {
    const bool isWanted =
        aCount == 1 || std::any_of(aNames + 1, aNames + aCount, [name](const char* aName) { return name == aName; });
    if (!isWanted)
      continue;
    const std::optional<KrPixelType> type = KrFindPixelType(name);
    if (!type)
      benchmarks::Fail("there is no format " + std::string(name) + ".");
    for (const int threads : {1, 2})
      MeasureSizes(*KrFindPixelType(*type), threads);
    ++measured;
  }
  if (measured < (aCount == 1 ? static_cast<int>(std::size(kFormats)) : aCount - 1))
    benchmarks::Fail("a format that is named is not among those that are measured.");
}
