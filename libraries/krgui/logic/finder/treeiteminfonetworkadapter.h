#pragma once
// A network adapter's rows and picture.

#include "logic/finder/treeiteminfo.h"

namespace krgui {

class TreeItemInfoNetworkAdapter : public TreeItemInfoInterface {
public:
  void FillInfo(InterfaceSpan aAll, const KrInterface& aInterface) override;
  void UpdateIcon(InterfaceSpan aAll, const KrInterface& aInterface) override;

private:
  void AddAddressRows(InterfaceSpan aAll, const KrNetworkAdapter& aAdapter, std::size_t aIndex);
};

} // namespace krgui
