#pragma once
// Which kinds of device the finder lists and lets the user select.

#include "krsystem/krdeviceinfo.h"
#include "krsystem/krinterface.h"

#include <atomic>

namespace krgui {

/// The two flags of one kind. Thread: any.
struct KindFlags {
  std::atomic<bool> selectable;
  std::atomic<bool> listed;
};

/// The flags of all kinds. Devices of the older protocol are listed but not selectable unless the application says so.
class FinderKinds {
public:
  KindFlags gev = {true, true};
  KindFlags u3v = {true, true};
  KindFlags tolvanProtocol = {false, true};

  bool IsListed(KrDeviceInfoType aType) const;
  /// False for plain USB devices.
  bool IsSelectable(KrDeviceInfoType aType) const;
  bool IsListed(KrInterfaceType aType) const;
  /// Whether there is anything on the network to list: else the network's controls are hidden.
  bool IsNetworkListed() const { return gev.listed || tolvanProtocol.listed; }
};

/// What can be done with a selected node.
struct FinderActions {
  bool accept = false;       ///< OK, and a double-click.
  bool setIPAddress = false; ///< The button.
  bool showMenu = false;     ///< The context menu, which holds the same.
};

/// The actions on a device of a kind; on anything else there are none.
FinderActions GetFinderActions(const FinderKinds& aKinds, KrDeviceInfoType aType);

} // namespace krgui
