#include "krsystem/krinterface.h"

#include <utility>

namespace {

constexpr const char* kNoAddress = "0.0.0.0";

} // namespace

KrInterface::KrInterface(const KrString& aUniqueID, const KrString& aDisplayID)
    : mUniqueID(aUniqueID), mDisplayID(aDisplayID), mListMutex(std::make_shared<std::mutex>()) {}
KrInterface::~KrInterface() = default;

std::size_t KrInterface::GetDeviceCount() const {
  const std::lock_guard lock(*mListMutex);
  return mDevices.size();
}

const KrDeviceInfo* KrInterface::GetDeviceInfo(std::size_t aIndex) const {
  const std::lock_guard lock(*mListMutex);
  return aIndex < mDevices.size() ? mDevices[aIndex] : nullptr;
}

KrNetworkAdapter::KrNetworkAdapter(krsystem::NetworkAdapterFields aFields)
    : KrInterface(aFields.uniqueID, aFields.displayID), mFields(std::move(aFields)) {
  if (mFields.addresses.empty())
    mFields.addresses.emplace_back();
}
KrNetworkAdapter::~KrNetworkAdapter() = default;

KrString KrNetworkAdapter::GetIPAddress(std::size_t aIndex) const {
  return aIndex < mFields.addresses.size() ? mFields.addresses[aIndex].address : KrString(kNoAddress);
}

KrString KrNetworkAdapter::GetSubnetMask(std::size_t aIndex) const {
  return aIndex < mFields.addresses.size() ? mFields.addresses[aIndex].mask : KrString(kNoAddress);
}

KrUSBHostController::KrUSBHostController(krsystem::USBHostControllerFields aFields)
    : KrInterface(aFields.uniqueID, aFields.displayID), mFields(std::move(aFields)) {}
KrUSBHostController::~KrUSBHostController() = default;
