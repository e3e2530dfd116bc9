#pragma once
// The serial line to a camera, for the protocols on it. What is said on it is left to them.

#include "krbase/krresult.h"

#include <cstddef>
#include <cstdint>
#include <stop_token>
#include <vector>

namespace krcamerabridge {

/// Thread: Read and Write one at a time; a stop of the token ends a waiting call at once, with Aborted.
/// Ownership: the connection's.
class ICameraLine {
public:
  virtual ~ICameraLine() = default;

  /// Takes what was received, at most aSize bytes, waiting up to aTimeoutMs milliseconds (0 does not wait) for the
  /// first. TimeLimitExceeded when none came; ConnectionLost when the device is gone.
  virtual KrResult Read(std::uint8_t* aBytes, std::size_t aSize, std::size_t& aRead, std::uint32_t aTimeoutMs,
                        const std::stop_token& aCancel) = 0;
  /// Sends all bytes, within aTimeoutMs. Results as of Read.
  virtual KrResult Write(const std::uint8_t* aBytes, std::size_t aSize, std::uint32_t aTimeoutMs,
                         const std::stop_token& aCancel) = 0;
  /// Drops what was received and not read yet.
  virtual void DropReceived() = 0;

  /// The rates that the device's port can have, in baud; none where it cannot say.
  virtual std::vector<std::uint32_t> GetSupportedBaudRates() = 0;
  /// The rate that is set; 0 where it is not known.
  virtual std::uint32_t GetBaudRate() = 0;
  /// NotSupported for a rate that the port does not have, or where it has no speed to be set.
  virtual KrResult SetBaudRate(std::uint32_t aBaudRate) = 0;
};

} // namespace krcamerabridge
