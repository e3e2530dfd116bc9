#include "krsystem/adapterids.h"

#include <map>

namespace krsystem {

void AssignUniqueIDs(std::vector<NetworkAdapterFields>& aAdapters) {
  std::map<KrString, int> uses;
  for (const auto& adapter : aAdapters)
    ++uses[adapter.macAddress];
  for (auto& adapter : aAdapters) {
    const bool isOwn = !adapter.macAddress.IsEmpty() && uses[adapter.macAddress] == 1;
    adapter.uniqueID = isOwn ? adapter.macAddress : adapter.macAddress + "/" + adapter.name;
  }
}

} // namespace krsystem
