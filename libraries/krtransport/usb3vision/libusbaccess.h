#pragma once
// Device files and string descriptors of real devices, by libusb. Each call opens what it needs and closes it again, so
// that a device that is only listed can go to sleep, and be opened by anybody.

#include "usb3vision/iusbaccess.h"

#include "usb3vision/usbtree.h"

namespace krtransport {

/// Thread: any.
class LibUsbAccess final : public IUsbAccess {
public:
  explicit LibUsbAccess(UsbRoots aRoots) : mRoots(std::move(aRoots)) {}

  KrResult CheckPermission(std::uint32_t aBus, std::uint32_t aAddress) override;
  /// A device that another program has open gives its texts all the same.
  KrResult ReadStrings(std::uint32_t aBus, std::uint32_t aAddress, const UsbTextRequest& aRequest,
                       std::vector<std::string>& aTexts) override;

private:
  const UsbRoots mRoots;
};

} // namespace krtransport
