#pragma once
// How a link reaches a device's memory: through Aravis where it controls the device, by datagrams of our own where it
// only looks. Time limits, alignment and threads are the register port's business.

#include "krbase/krresult.h"

#include <cstdint>
#include <span>

namespace krtransport {

/// Thread: the link's I/O thread alone; calls block as long as the device's protocol makes them.
class IRegisterChannel {
public:
  virtual ~IRegisterChannel() = default;
  /// Address and length are multiples of 4, at most kMaxReadMemory bytes.
  virtual KrResult Read(std::uint32_t aAddress, std::span<std::uint8_t> aData) = 0;
  virtual KrResult Write(std::uint32_t aAddress, std::span<const std::uint8_t> aData) = 0;
};

} // namespace krtransport
