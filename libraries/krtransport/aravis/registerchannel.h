#pragma once
// How a link reaches a device's memory: through Aravis where it controls the device, by datagrams of our own where it
// only looks. Time limits, alignment and threads are the register port's business.

#include "krbase/krresult.h"

#include <cstddef>
#include <cstdint>
#include <span>

namespace krtransport {

/// What one access of a channel may be.
struct RegisterLimits {
  std::uint64_t lastAddress = 0; ///< The highest address that there is.
  std::size_t alignment = 1;     ///< Address and length are multiples of it.
  std::size_t maxBytes = 0;      ///< The longest access, a multiple of the alignment.
};

/// Thread: the link's I/O thread alone, but for GetLimits; calls block as long as the device's protocol makes them.
class IRegisterChannel {
public:
  virtual ~IRegisterChannel() = default;
  /// Stays the same while the channel lives. Any thread.
  virtual RegisterLimits GetLimits() const = 0;
  /// Accesses within the limits.
  virtual KrResult Read(std::uint64_t aAddress, std::span<std::uint8_t> aData) = 0;
  virtual KrResult Write(std::uint64_t aAddress, std::span<const std::uint8_t> aData) = 0;
};

} // namespace krtransport
