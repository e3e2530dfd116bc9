#pragma once
// A GigE Vision device's rows and picture. Who controls the device is asked only once it is selected.

#include "logic/finder/treeiteminfo.h"

namespace krgui {

class TreeItemInfoGEV : public TreeItemInfoDevice {
public:
  using TreeItemInfoDevice::TreeItemInfoDevice;

  void RefreshInfo(const AccessQuery& aQuery) override;
  void FillInfo(const KrDeviceInfo& aDevice) override;
  void UpdateIcon(const KrDeviceInfo& aDevice) override;

private:
  void AddDescriptionRows(const KrDeviceInfoGEV& aDevice);
  void AddConfigurationRows(const KrDeviceInfoGEV& aDevice);

  KrString mIPAddress; // Empty while the device cannot be reached.
  bool mIsAccessStatusDone = false;
  std::size_t mAccessStatusRow = 0;
};

} // namespace krgui
