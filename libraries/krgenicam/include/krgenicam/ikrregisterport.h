#pragma once
// Registers of a device: all that a parameter array needs beside the description. GigE Vision, USB3 Vision, the
// simulation and a Camera Link camera behind a serial line each have their own.

#include "krbase/krresult.h"

#include <cstddef>
#include <cstdint>
#include <stop_token>

/// Reads and writes bytes at addresses of a device.
///
/// After an access that timed out the device counts as silent: further accesses fail at once with TimeLimitExceeded,
/// until the port, which asks the device in the background, had an answer. So nobody waits for a dead device twice.
///
/// A port should throw nothing. What it throws all the same when a parameter array calls it, or the description is
/// read, is caught there, and is a failure of that access: SystemError, with the words of the exception.
///
/// Thread: any; accesses of several threads are done one after the other.
/// Ownership: belongs to the open device and ends with it.
class KR_EXPORT IKrRegisterPort {
public:
  virtual ~IKrRegisterPort() = default;

  /// Reads aLength bytes from aAddress on, in the order in which the device has them.
  /// TimeLimitExceeded when the answer takes longer than aTimeoutMs (milliseconds, at least 1; the access may still
  /// happen), Aborted at once when aCancel is stopped before the answer is there (the same holds), ConnectionLost when
  /// the device is gone, ProtocolError with the device's own words when it refuses, InvalidInput for null, a time limit
  /// of 0 and a length of 0 or beyond 16 MiB. On failure the content of aData is undefined.
  virtual KrResult Read(std::uint64_t aAddress, void* aData, std::size_t aLength, std::uint32_t aTimeoutMs,
                        const std::stop_token& aCancel = {}) = 0;
  /// Writes aLength bytes from aAddress on; results as for Read.
  virtual KrResult Write(std::uint64_t aAddress, const void* aData, std::size_t aLength, std::uint32_t aTimeoutMs,
                         const std::stop_token& aCancel = {}) = 0;
};
