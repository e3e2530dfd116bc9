#include "usb3vision/usbversion.h"

#include <libusb.h>

#include <string>

namespace krtransport {

KrString GetUsbVersion() {
  const libusb_version& version = *libusb_get_version();
  return "libusb " + std::to_string(version.major) + "." + std::to_string(version.minor) + "." +
         std::to_string(version.micro);
}

} // namespace krtransport
