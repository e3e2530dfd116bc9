#pragma once
// A USB3 Vision device's rows and picture. It is always reachable: what is wrong with it, the rows and picture say.

#include "logic/finder/treeiteminfo.h"

namespace krgui {

class TreeItemInfoU3V : public TreeItemInfoDevice {
public:
  using TreeItemInfoDevice::TreeItemInfoDevice;

  void FillInfo(const KrDeviceInfo& aDevice) override;
  void UpdateIcon(const KrDeviceInfo& aDevice) override;

private:
  void AddDescriptionRows(const KrDeviceInfoU3V& aDevice);
  void AddVersionRows(const KrDeviceInfoU3V& aDevice);
  void AddSpeedRows(const KrDeviceInfoU3V& aDevice);
};

} // namespace krgui
