#pragma once
// The rows and picture of a device of the older Tolvan protocol.

#include "logic/finder/treeiteminfo.h"

namespace krgui {

class TreeItemInfoTolvanProtocol : public TreeItemInfoDevice {
public:
  using TreeItemInfoDevice::TreeItemInfoDevice;

  void FillInfo(const KrDeviceInfo& aDevice) override;
  void UpdateIcon(const KrDeviceInfo& aDevice) override;
};

} // namespace krgui
