#pragma once
// What a device file is needed for while devices are looked for: whether it can be opened, and the device's texts.
// Apart, so that discovery can be tested without devices.

#include "krbase/krresult.h"

#include <chrono>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace krtransport {

/// Thread: any.
class IUsbAccess {
public:
  virtual ~IUsbAccess() = default;

  /// Whether the device file can be opened for reading and writing. AccessDenied when permission is missing, NotFound
  /// when there is no such file any more.
  virtual KrResult CheckPermission(std::uint32_t aBus, std::uint32_t aAddress) = 0;
  /// Reads string descriptors by their numbers, one text each, empty for the number 0 and for what the device does not
  /// give. A device that does not answer is asked nothing more; each question may take aTimeout. Results as of
  /// CheckPermission, or TimeLimitExceeded or ProtocolError for a device that gave no text at all.
  virtual KrResult ReadStrings(std::uint32_t aBus, std::uint32_t aAddress, std::span<const std::uint8_t> aIndexes,
                               std::chrono::milliseconds aTimeout, std::vector<std::string>& aTexts) = 0;
};

} // namespace krtransport
