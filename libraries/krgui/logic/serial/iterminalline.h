#pragma once
// The open port as the terminal's threads see it.

#include "krbase/krresult.h"

#include <cstdint>
#include <stop_token>

namespace krgui {

/// Thread: any; Read and Write may run at the same time. Ownership: outlives the threads that use it.
class ITerminalLine {
public:
  virtual ~ITerminalLine() = default;
  /// As KrDeviceSerialPort's; writing ends with Aborted when aCancel is stopped, too.
  virtual KrResult Read(std::uint8_t* aBuffer, std::uint32_t aSize, std::uint32_t& aRead, std::uint32_t aTimeoutMs) = 0;
  virtual KrResult Write(const std::uint8_t* aData, std::uint32_t aSize, std::uint32_t& aWritten,
                         const std::stop_token& aCancel) = 0;
  virtual void Cancel() = 0;
};

} // namespace krgui
