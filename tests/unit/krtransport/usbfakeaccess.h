#pragma once
// Device files and texts of devices that are not there, for tests of what discovery makes of them.

#include "usb3vision/iusbaccess.h"
#include "usb3vision/usbdescriptors.h"

#include <atomic>
#include <functional>

namespace krtransport {

/// Every device gives the same texts, or none of them permission.
class UsbFakeAccess final : public IUsbAccess {
public:
  explicit UsbFakeAccess(KrResult aPermission = {}) : mPermission(std::move(aPermission)) {}

  KrResult CheckPermission(std::uint32_t, std::uint32_t) override { return mPermission; }
  KrResult ReadStrings(std::uint32_t, std::uint32_t, const UsbTextRequest& aRequest,
                       std::vector<std::string>& aTexts) override {
    ++mReadCount;
    if (mOnRead)
      mOnRead(aRequest);
    if (!mPermission.IsOK())
      return mPermission;
    if (mIsSilent)
      return {KrResult::Code::TimeLimitExceeded, "The device did not answer."};
    for (const std::uint8_t index : aRequest.indexes)
      aTexts.push_back(index == 0 ? std::string() : "Text " + std::to_string(index));
    return {};
  }
  /// What happens while texts are read.
  void SetOnRead(std::function<void(const UsbTextRequest&)> aOnRead) { mOnRead = std::move(aOnRead); }
  /// From now on no device gives texts.
  void SetSilent() { mIsSilent = true; }
  int GetReadCount() const { return mReadCount; }

private:
  const KrResult mPermission;
  std::function<void(const UsbTextRequest&)> mOnRead;
  std::atomic<bool> mIsSilent{false};
  std::atomic<int> mReadCount{0};
};

} // namespace krtransport
