#pragma once
// Whether an adapter's subnet is its own among all adapters of the host.

#include "logic/finder/treeiteminfo.h"

#include <cstddef>

namespace krgui {

/// False when more than one address of all adapters, this one included, lies in the subnet of the adapter's address of
/// an index. A mask of 0.0.0.0 counts as unique.
bool IsSubnetUnique(InterfaceSpan aAll, const KrNetworkAdapter& aAdapter, std::size_t aIndex);

} // namespace krgui
