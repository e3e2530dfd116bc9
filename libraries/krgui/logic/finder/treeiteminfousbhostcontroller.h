#pragma once
// A USB host controller's rows and picture.

#include "logic/finder/treeiteminfo.h"

namespace krgui {

class TreeItemInfoUSBHostController : public TreeItemInfoInterface {
public:
  void FillInfo(InterfaceSpan aAll, const KrInterface& aInterface) override;
  void UpdateIcon(InterfaceSpan aAll, const KrInterface& aInterface) override;
};

} // namespace krgui
