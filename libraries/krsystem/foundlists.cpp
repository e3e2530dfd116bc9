#include "foundlists.h"

#include <algorithm>

namespace krsystem {

void FoundLists::SetInterfaces(std::vector<KrInterface*> aInterfaces) {
  const std::lock_guard lock(*mMutex);
  const auto isGone = [&aInterfaces](const KrInterface* aInterface) {
    return aInterface && std::ranges::find(aInterfaces, aInterface) == aInterfaces.end();
  };
  for (KrInterface* interface : mInterfaces) {
    if (isGone(interface))
      interface->mDevices.clear();
  }
  std::erase_if(mByID, [&isGone](const auto& aEntry) { return isGone(aEntry.first.first); });
  mInterfaces = std::move(aInterfaces);
  OrderLocked();
}

void FoundLists::Enter(KrInterface* aInterface, const KrDeviceInfo* aDevice) {
  const std::lock_guard lock(*mMutex);
  const auto [entry, isNew] = mByID.try_emplace({aInterface, aDevice->GetUniqueID()}, aDevice);
  const KrDeviceInfo* const former = std::exchange(entry->second, aDevice);
  const auto enter = [former, aDevice, isNew = isNew](std::vector<const KrDeviceInfo*>& aList) {
    if (isNew)
      aList.push_back(aDevice);
    else if (former != aDevice)
      std::ranges::replace(aList, former, aDevice);
  };
  enter(mDevices);
  if (aInterface)
    enter(aInterface->mDevices);
}

void FoundLists::Remove(KrInterface* aInterface, const KrString& aUniqueID) {
  const std::lock_guard lock(*mMutex);
  const auto entry = mByID.find({aInterface, aUniqueID});
  if (entry == mByID.end())
    return;
  std::erase(mDevices, entry->second);
  if (aInterface)
    std::erase(aInterface->mDevices, entry->second);
  mByID.erase(entry);
}

void FoundLists::SetDevices(const std::vector<Entry>& aEntries) {
  const std::lock_guard lock(*mMutex);
  for (KrInterface* interface : mInterfaces)
    interface->mDevices.clear();
  mByID.clear();
  for (const auto& [interface, device] : aEntries) {
    mByID.emplace(Key(interface, device->GetUniqueID()), device);
    if (interface)
      interface->mDevices.push_back(device);
  }
  OrderLocked();
}

void FoundLists::Order() {
  const std::lock_guard lock(*mMutex);
  OrderLocked();
}

void FoundLists::OrderLocked() {
  mDevices.clear();
  for (const KrInterface* interface : mInterfaces)
    mDevices.insert(mDevices.end(), interface->mDevices.begin(), interface->mDevices.end());
  for (auto entry = mByID.lower_bound(Key()); entry != mByID.end() && !entry->first.first; ++entry)
    mDevices.push_back(entry->second);
}

std::size_t FoundLists::GetInterfaceCount() const {
  const std::lock_guard lock(*mMutex);
  return mInterfaces.size();
}

const KrInterface* FoundLists::GetInterface(std::size_t aIndex) const {
  const std::lock_guard lock(*mMutex);
  return aIndex < mInterfaces.size() ? mInterfaces[aIndex] : nullptr;
}

std::vector<const KrInterface*> FoundLists::GetInterfaces() const {
  const std::lock_guard lock(*mMutex);
  return {mInterfaces.begin(), mInterfaces.end()};
}

std::size_t FoundLists::GetDeviceCount() const {
  const std::lock_guard lock(*mMutex);
  return mDevices.size();
}

const KrDeviceInfo* FoundLists::GetDevice(std::size_t aIndex) const {
  const std::lock_guard lock(*mMutex);
  return aIndex < mDevices.size() ? mDevices[aIndex] : nullptr;
}

std::vector<const KrDeviceInfo*> FoundLists::GetDevices() const {
  const std::lock_guard lock(*mMutex);
  return mDevices;
}

} // namespace krsystem
