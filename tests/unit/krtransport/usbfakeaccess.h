#pragma once
// Device files and texts of devices that are not there, for tests of what discovery makes of them.

#include "usb3vision/iusbaccess.h"
#include "usb3vision/usbdescriptors.h"

#include <atomic>

namespace krtransport {

/// Every device gives the same texts, or none of them permission.
class UsbFakeAccess final : public IUsbAccess {
public:
  explicit UsbFakeAccess(KrResult aPermission = {}) : mPermission(std::move(aPermission)) {}

  KrResult CheckPermission(std::uint32_t, std::uint32_t) override { return mPermission; }
  KrResult ReadStrings(std::uint32_t, std::uint32_t, std::span<const std::uint8_t> aIndexes, std::chrono::milliseconds,
                       std::vector<std::string>& aTexts) override {
    ++mReadCount;
    if (!mPermission.IsOK())
      return mPermission;
    for (const std::uint8_t index : aIndexes)
      aTexts.push_back(index == 0 ? std::string() : "Text " + std::to_string(index));
    return {};
  }
  int GetReadCount() const { return mReadCount; }

private:
  const KrResult mPermission;
  std::atomic<int> mReadCount{0};
};

} // namespace krtransport
