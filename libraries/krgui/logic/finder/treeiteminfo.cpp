#include "logic/finder/treeiteminfo.h"

#include "logic/finder/treeiteminfogev.h"
#include "logic/finder/treeiteminfonetworkadapter.h"
#include "logic/finder/treeiteminfotolvanprotocol.h"
#include "logic/finder/treeiteminfou3v.h"
#include "logic/finder/treeiteminfousb.h"
#include "logic/finder/treeiteminfousbhostcontroller.h"

namespace krgui {

void TreeItemInfoInterface::InitInterface(InterfaceSpan aAll, const KrInterface& aInterface) {
  mRows.clear();
  mDisplayName = aInterface.GetDisplayID();
  mUniqueID = aInterface.GetUniqueID();
  mType = aInterface.GetType();
  FillInfo(aAll, aInterface);
  UpdateIcon(aAll, aInterface);
}

void TreeItemInfoDevice::InitDevice(const KrDeviceInfo& aDevice, std::uint32_t aNowMs) {
  mRows.clear();
  mDisplayName = aDevice.GetDisplayID();
  mUniqueID = aDevice.GetUniqueID();
  mLastUpdateMs = aNowMs;
  mType = aDevice.GetType();
  FillInfo(aDevice);
  UpdateIcon(aDevice);
}

std::unique_ptr<TreeItemInfoInterface> CreateInterfaceInfo(const KrInterface& aInterface) {
  switch (aInterface.GetType()) {
  case KrInterfaceType::USBHostController:
    return std::make_unique<TreeItemInfoUSBHostController>();
  case KrInterfaceType::NetworkAdapter:
    return std::make_unique<TreeItemInfoNetworkAdapter>();
  }
  return nullptr;
}

std::unique_ptr<TreeItemInfoDevice> CreateDeviceInfo(const KrDeviceInfo& aDevice, bool aGEVEnabled, bool aU3VEnabled,
                                                     bool aTolvanEnabled, std::uint32_t aNowMs) {
  switch (aDevice.GetType()) {
  case KrDeviceInfoType::GEV:
    return std::make_unique<TreeItemInfoGEV>(aGEVEnabled, aNowMs);
  case KrDeviceInfoType::TolvanProtocol:
    return std::make_unique<TreeItemInfoTolvanProtocol>(aTolvanEnabled, aNowMs);
  case KrDeviceInfoType::USB:
    return std::make_unique<TreeItemInfoUSB>(false, aNowMs);
  case KrDeviceInfoType::U3V:
    return std::make_unique<TreeItemInfoU3V>(aU3VEnabled, aNowMs);
  }
  return nullptr;
}

} // namespace krgui
