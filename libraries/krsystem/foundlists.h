#pragma once
// The lists of a KrSystem, safe to read while discovery changes them. What enters them, and when, is left to the
// system.

#include "krsystem/krdeviceinfo.h"
#include "krsystem/krinterface.h"

#include <cstddef>
#include <map>
#include <memory>
#include <mutex>
#include <utility>
#include <vector>

namespace krsystem {

/// Thread: any; those that change something one at a time.
/// Ownership: borrows interfaces and devices, which live as long as the lists.
class FoundLists {
public:
  /// A device and the interface on which it answered; null where none could be told.
  using Entry = std::pair<KrInterface*, const KrDeviceInfo*>;

  /// Lets an interface's own list be guarded by the same lock as these. Before anybody else knows the interface.
  void Adopt(KrInterface& aInterface) const { aInterface.mListMutex = mMutex; }

  /// Replaces the interfaces. Devices behind an interface that is none of them leave the lists.
  void SetInterfaces(std::vector<KrInterface*> aInterfaces);
  /// Enters a device at the end, or in the place of one with the same ID on the same interface. The interface is
  /// listed.
  void Enter(KrInterface* aInterface, const KrDeviceInfo* aDevice);
  /// Takes out the device with an ID on an interface, if there is one.
  void Remove(KrInterface* aInterface, const KrString& aUniqueID);
  /// Replaces the devices by these, in this order. Each ID is there once on an interface, each interface is listed.
  void SetDevices(const std::vector<Entry>& aEntries);
  /// Puts the devices in the order of their interfaces; behind one they stay in the order in which they were entered.
  /// Those without an interface stand at the end.
  void Order();

  std::size_t GetInterfaceCount() const;
  const KrInterface* GetInterface(std::size_t aIndex) const;
  std::vector<const KrInterface*> GetInterfaces() const;
  std::size_t GetDeviceCount() const;
  const KrDeviceInfo* GetDevice(std::size_t aIndex) const;
  std::vector<const KrDeviceInfo*> GetDevices() const;

private:
  using Key = std::pair<const KrInterface*, KrString>;

  void OrderLocked();

  /// Guards the members below and every listed interface's list of devices. Shared with the interfaces.
  const std::shared_ptr<std::mutex> mMutex = std::make_shared<std::mutex>();
  std::vector<KrInterface*> mInterfaces;
  std::vector<const KrDeviceInfo*> mDevices;
  std::map<Key, const KrDeviceInfo*> mByID;
};

} // namespace krsystem
