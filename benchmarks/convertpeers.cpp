#include "convertpeers.h"

// What a library that is not there converts: nothing.
namespace benchmarks {

#ifndef KRGUI_HAS_OPENCV
PeerConversion FindOpenCVConversion(const ConversionTask&, int) {
  return {};
}
#endif

#ifndef KRGUI_HAS_LIBYUV
PeerConversion FindLibyuvConversion(const ConversionTask&) {
  return {};
}
#endif

} // namespace benchmarks
