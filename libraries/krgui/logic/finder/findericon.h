#pragma once
// The pictures of the finder's tree by their place in the image strip. How they look is left to the finder.

#include <cstdint>

namespace krgui {

inline constexpr int kFinderIconCount = 29;

/// The places that rules assign. The others keep the strip's count and are drawn for what stands between them.
enum class FinderIcon : std::int32_t {
  TolvanProtocol = 0,
  GEV = 1,
  TolvanProtocolInvalid = 2,
  GEVInvalid = 3,
  Adapter = 5,
  AdapterWithDriver = 7,
  AdapterWithoutAddress = 8,
  AdapterDoubtful = 9,
  AdapterWithDriverWithoutAddress = 10,
  AdapterWithDriverDoubtful = 11,
  USB = 17,
  U3V = 21,
  U3VSlow = 23,
  U3VWithoutDriver = 24,
  GEVDisabled = 25,
  TolvanProtocolDisabled = 26,
  U3VDisabled = 27,
  USBDisabled = 28,
};

} // namespace krgui
