#pragma once
// The row and picture of a device on a USB bus that is no usable camera.

#include "logic/finder/treeiteminfo.h"

namespace krgui {

class TreeItemInfoUSB : public TreeItemInfoDevice {
public:
  using TreeItemInfoDevice::TreeItemInfoDevice;

  void FillInfo(const KrDeviceInfo& aDevice) override;
  void UpdateIcon(const KrDeviceInfo& aDevice) override;
};

} // namespace krgui
