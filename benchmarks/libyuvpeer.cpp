// Conversions by libyuv. Those from YUV take luma from 16 to 235: they do as much work as ours, but give other colours.

#include "convertpeers.h"

#include <libyuv.h>

#include <algorithm>
#include <array>

namespace benchmarks {

namespace {

using LibyuvConverter = int (*)(const std::uint8_t* aSource, int aSourceStride, std::uint8_t* aDestination,
                                int aDestinationStride, int aWidth, int aHeight);

struct LibyuvRow {
  KrPixelType type;
  int bytesPerPixel;
  LibyuvConverter convert;
};

constexpr std::array kRows = {
    LibyuvRow{KrPixel::Mono8, 1, &libyuv::J400ToARGB},
    LibyuvRow{KrPixel::RGB8, 3, &libyuv::RAWToARGB},
    LibyuvRow{KrPixel::BGR8, 3, &libyuv::RGB24ToARGB},
    LibyuvRow{KrPixel::RGBa8, 4, &libyuv::ABGRToARGB},
    LibyuvRow{KrPixel::BGRa8, 4, &libyuv::ARGBCopy},
    LibyuvRow{KrPixel::BGR565p, 2, &libyuv::RGB565ToARGB},
    LibyuvRow{KrPixel::YUV422_8, 2, &libyuv::YUY2ToARGB},
    LibyuvRow{KrPixel::YUV422_8_UYVY, 2, &libyuv::UYVYToARGB},
    LibyuvRow{KrPixel::YCbCr601_422_8, 2, &libyuv::YUY2ToARGB},
    LibyuvRow{KrPixel::YCbCr601_422_8_CbYCrY, 2, &libyuv::UYVYToARGB},
};

} // namespace

PeerConversion FindLibyuvConversion(const ConversionTask& aTask) {
  const auto row =
      std::find_if(kRows.begin(), kRows.end(), [&aTask](const LibyuvRow& aRow) { return aRow.type == aTask.type; });
  if (row == kRows.end())
    return {};
  return [aTask, row] {
    const int width = static_cast<int>(aTask.width);
    row->convert(aTask.source, row->bytesPerPixel * width, aTask.destination, 4 * width, width,
                 static_cast<int>(aTask.height));
  };
}

} // namespace benchmarks
