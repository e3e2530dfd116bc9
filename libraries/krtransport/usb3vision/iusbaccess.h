#pragma once
// What a device file is needed for while devices are looked for: whether it can be opened, and the device's texts.
// Apart, so that discovery can be tested without devices.

#include "krbase/krresult.h"
#include "usb3vision/usbtextreader.h"

#include <cstdint>
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
  /// Reads texts as ReadUsbTexts does. Results as of it and of CheckPermission.
  virtual KrResult ReadStrings(std::uint32_t aBus, std::uint32_t aAddress, const UsbTextRequest& aRequest,
                               std::vector<std::string>& aTexts) = 0;
};

} // namespace krtransport
