#pragma once
// A serial line behind a device, as its link carries it: bytes in, bytes out. Which port of the device it is, and what
// the bytes mean, is left to the serial classes.

#include "krbase/krresult.h"

#include <cstddef>
#include <cstdint>
#include <stop_token>

namespace krsystem {

/// A byte channel of an open device.
///
/// Thread: any; Read and Write may run at the same time.
/// Ownership: shared; it may outlive its link, whose end makes its operations fail with ConnectionLost, waiting ones at
/// once.
class KR_EXPORT IByteChannel {
public:
  virtual ~IByteChannel() = default;

  /// Opens the channel; what was received before is dropped. Busy when it is open already.
  virtual KrResult Open() = 0;
  /// Closes it; waiting calls of Read return Aborted. Closing what is closed does nothing.
  virtual void Close() = 0;
  /// Takes what was received, at most aSize bytes, waiting up to aTimeoutMs milliseconds (0 does not wait) for the
  /// first byte. TimeLimitExceeded when none came, Aborted when aCancel is stopped, WrongState when the channel is
  /// closed, ConnectionLost when the device is gone.
  virtual KrResult Read(std::uint8_t* aBytes, std::size_t aSize, std::size_t& aRead, std::uint32_t aTimeoutMs,
                        const std::stop_token& aCancel = {}) = 0;
  /// Sends bytes; aWritten says how many were taken, also on failure. Results as for Read.
  virtual KrResult Write(const std::uint8_t* aBytes, std::size_t aSize, std::size_t& aWritten, std::uint32_t aTimeoutMs,
                         const std::stop_token& aCancel = {}) = 0;
};

} // namespace krsystem
