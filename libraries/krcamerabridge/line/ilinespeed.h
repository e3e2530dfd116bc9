#pragma once
// The speed of the device's end of a line. Which bytes go over the line is left to ICameraLine.

#include "krbase/krresult.h"

#include <cstdint>
#include <vector>

namespace krcamerabridge {

/// Thread: one call at a time, which may wait as long as a few register accesses take.
class ILineSpeed {
public:
  virtual ~ILineSpeed() = default;

  /// The rates that can be set, in baud; none where there is nothing to set.
  virtual KrResult GetSupported(std::vector<std::uint32_t>& aBaudRates) = 0;
  /// The rate that is set. NotFound and NotSupported where it is not known.
  virtual KrResult Get(std::uint32_t& aBaudRate) = 0;
  /// NotFound and NotSupported for a rate that cannot be set.
  virtual KrResult Set(std::uint32_t aBaudRate) = 0;
};

} // namespace krcamerabridge
