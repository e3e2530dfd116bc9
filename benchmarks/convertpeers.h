#pragma once
// The same conversions by other libraries, where these are there when the benchmarks are configured.

#include "krbuffer/krpixeltype.h"

#include <cstdint>
#include <functional>

namespace benchmarks {

struct ConversionTask {
  KrPixelType type;
  std::uint32_t width;
  std::uint32_t height;
  std::uint8_t* source; ///< Without padding, as the destination.
  std::uint8_t* destination;
};

/// A conversion to BGRa8, or an empty function where the library has none from the format.
using PeerConversion = std::function<void()>;

/// With as many threads as the library is told to use, until it is asked for another conversion. Bayer formats are
/// interpolated bilinearly.
PeerConversion FindOpenCVConversion(const ConversionTask& aTask, int aThreads);
/// In one thread.
PeerConversion FindLibyuvConversion(const ConversionTask& aTask);

} // namespace benchmarks
