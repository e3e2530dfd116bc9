// How long does the conversion of one image to BGRa8 take? The physical limit, and the peer, is a memset of the
// destination.

#include "figure.h"
#include "krbuffer/krbufferconverter.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

namespace {

struct Size {
  std::uint32_t width, height;
};

void Fill(KrBuffer& aBuffer) {
  for (std::size_t i = 0; i < aBuffer.GetSize(); ++i)
    aBuffer.GetDataPointer()[i] = static_cast<std::uint8_t>(i * 7 + i / 1000);
}

void Require(const KrResult& aResult) {
  if (aResult.IsOK())
    return;
  std::fprintf(stderr, "%s: %s\n", aResult.GetCodeString().CStr(), aResult.GetDescription().CStr());
  std::exit(1);
}

void Measure(const Size& aSize, KrPixelType aType, int aThreads) {
  KrBuffer source;
  KrBuffer destination;
  Require(source.GetImage()->Alloc(aSize.width, aSize.height, aType));
  Require(destination.GetImage()->Alloc(aSize.width, aSize.height, KrPixel::BGRa8));
  Fill(source);
  const KrBufferConverter converter(aThreads);

  constexpr int kRuns = 15;
  const double limit =
      benchmarks::MeasureBestMs(kRuns, [&] { std::memset(destination.GetDataPointer(), 0x55, destination.GetSize()); });
  const double time = benchmarks::MeasureBestMs(
      kRuns, [&] { Require(converter.Convert(source.GetImage(), &destination, false, false)); });

  const std::string name = std::string("convert_") + std::string(KrFindPixelType(aType)->name) + "_" +
                           std::to_string(aSize.width) + "x" + std::to_string(aSize.height) + "_" +
                           std::to_string(converter.GetThreadCount()) + "t";
  benchmarks::PrintFigure(name.c_str(), time, "ms", "memset_of_destination", limit);
}

} // namespace

int main() {
  for (const Size& size : {Size{1920, 1080}, Size{4096, 3000}})
    for (const KrPixelType type :
         {KrPixel::Mono8, KrPixel::Mono12, KrPixel::Mono12p, KrPixel::Mono16, KrPixel::Mono10Packed, KrPixel::BayerRG8,
          KrPixel::BayerRG12p, KrPixel::RGB8, KrPixel::RGB12, KrPixel::BGRa8, KrPixel::YUV422_8, KrPixel::Coord3D_C32f})
      for (const int threads : {1, -1})
        Measure(size, type, threads);
}
