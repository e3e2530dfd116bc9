#include "logic/finder/finderkinds.h"

namespace krgui {

bool FinderKinds::IsListed(KrDeviceInfoType aType) const {
  switch (aType) {
  case KrDeviceInfoType::GEV:
    return gev.listed;
  case KrDeviceInfoType::TolvanProtocol:
    return tolvanProtocol.listed;
  case KrDeviceInfoType::USB:
  case KrDeviceInfoType::U3V:
    return u3v.listed;
  }
  return false;
}

bool FinderKinds::IsSelectable(KrDeviceInfoType aType) const {
  switch (aType) {
  case KrDeviceInfoType::GEV:
    return gev.selectable;
  case KrDeviceInfoType::TolvanProtocol:
    return tolvanProtocol.selectable;
  case KrDeviceInfoType::U3V:
    return u3v.selectable;
  case KrDeviceInfoType::USB:
    return false;
  }
  return false;
}

bool FinderKinds::IsListed(KrInterfaceType aType) const {
  return aType == KrInterfaceType::NetworkAdapter ? IsNetworkListed() : u3v.listed.load();
}

FinderActions GetFinderActions(const FinderKinds& aKinds, KrDeviceInfoType aType) {
  const bool isSelectable = aKinds.IsSelectable(aType);
  const bool isOnNetwork = aType == KrDeviceInfoType::GEV || aType == KrDeviceInfoType::TolvanProtocol;
  return {isSelectable, isSelectable && isOnNetwork, isSelectable && isOnNetwork};
}

} // namespace krgui
