#include "logic/finder/findermodel.h"

#include "logic/finder/finderkeys.h"

#include <algorithm>
#include <set>

namespace krgui {

namespace {

// Ages are differences of unsigned ticks, so that the clock may wrap.
bool IsTooOld(std::uint32_t aSinceMs, std::uint32_t aNowMs) {
  return aNowMs - aSinceMs > FinderModel::kMaxAgeMs;
}

template <typename Shown>
void SyncText(IFinderTree& aTree, const TreeItemInfo& aInfo, Shown& aShown) {
  if (aShown.text == aInfo.GetDisplayName())
    return;
  aTree.SyncText(aInfo.GetTreeItem(), aInfo.GetDisplayName());
  aShown.text = aInfo.GetDisplayName();
}

template <typename Shown>
void SyncIcon(IFinderTree& aTree, const TreeItemInfo& aInfo, Shown& aShown) {
  if (aShown.icon == aInfo.GetIcon())
    return;
  aTree.SyncIcon(aInfo.GetTreeItem(), aInfo.GetIcon());
  aShown.icon = aInfo.GetIcon();
}

template <typename Shown>
void Append(IFinderTree& aTree, TreeItem aParent, TreeItemInfo& aInfo, Shown& aShown) {
  aShown = {aInfo.GetDisplayName(), aInfo.GetIcon()};
  aInfo.SetTreeItem(aTree.Append(aParent, aShown.text, aShown.icon, aInfo));
}

} // namespace

FinderModel::FinderModel(const KrSystem& aSystem, const FinderKinds& aKinds, std::function<std::uint32_t()> aClock)
    : mSystem(aSystem), mKinds(aKinds), mClock(std::move(aClock)) {}
FinderModel::~FinderModel() = default;

FinderModel::Next FinderModel::TakeReport(const KrInterface* aInterface, const KrDeviceInfo* aDevice) {
  const std::vector<const KrInterface*> all = GetInterfaces();
  const std::string interfaceKey = aInterface ? GetInterfaceKey(all, *aInterface) : std::string();
  const std::lock_guard lock(mDataLock);
  const auto known = aInterface ? mInterfaces.find(interfaceKey) : mInterfaces.end();
  if (known == mInterfaces.end()) {
    // A kind without nodes would be missing after every rebuild too.
    if (!aDevice)
      return aInterface && CreateInterfaceInfo(*aInterface) ? Next::Rebuild : Next::Nothing;
  } else {
    TreeItemInfoInterface& node = *known->second.node;
    if (node.GetType() == aInterface->GetType())
      node.InitInterface(all, *aInterface);
    if (!aDevice)
      return Next::Refresh;
  }
  if (!mKinds.IsListed(aDevice->GetType()))
    return Next::Nothing;
  return TakeDevice(aInterface, interfaceKey, *aDevice) ? Next::Refresh : Next::Nothing;
}

bool FinderModel::TakeDevice(const KrInterface* aInterface, const std::string& aInterfaceKey,
                             const KrDeviceInfo& aDevice) {
  const std::uint32_t now = mClock();
  DeviceKey key(GetDeviceKey(aInterface, aDevice), aDevice.GetType());
  auto place = mDevices.find(key);
  if (place == mDevices.end()) {
    std::unique_ptr<TreeItemInfoDevice> node =
        CreateDeviceInfo(aDevice, mKinds.gev.selectable, mKinds.u3v.selectable, mKinds.tolvanProtocol.selectable, now);
    if (!node)
      return false;
    place = mDevices.try_emplace(std::move(key)).first;
    place->second.node = std::move(node);
  }
  DeviceEntry& entry = place->second;
  entry.node->InitDevice(aDevice, now);
  entry.node->SetInterfaceKey(aInterfaceKey);
  if (entry.shownUnder == aInterfaceKey)
    entry.lastReportThere = now;
  return true;
}

bool FinderModel::HasLostInterface() const {
  const std::vector<const KrInterface*> all = GetInterfaces();
  std::set<std::string> keys;
  for (const KrInterface* interface : all)
    keys.insert(GetInterfaceKey(all, *interface));
  const std::lock_guard lock(mDataLock);
  return std::ranges::any_of(mInterfaces, [&](const auto& aEntry) { return !keys.contains(aEntry.first); });
}

void FinderModel::Clear(IFinderTree& aTree) {
  const std::lock_guard lock(mDataLock);
  aTree.ClearSelection();
  // The items go first: none is ever bound to a node that is no more.
  aTree.DeleteAll();
  mDevices.clear();
  mInterfaces.clear();
}

void FinderModel::BuildInterfaces(IFinderTree& aTree) {
  const std::vector<const KrInterface*> all = GetInterfaces();
  const std::lock_guard lock(mDataLock);
  for (const KrInterface* interface : all)
    AddRoot(aTree, all, *interface);
  aTree.ExpandRoots();
}

void FinderModel::AddRoot(IFinderTree& aTree, InterfaceSpan aAll, const KrInterface& aInterface) {
  std::unique_ptr<TreeItemInfoInterface> node = CreateInterfaceInfo(aInterface);
  if (!node)
    return;
  const auto [place, isNew] = mInterfaces.try_emplace(GetInterfaceKey(aAll, aInterface));
  if (!isNew)
    return;
  node->InitInterface(aAll, aInterface);
  InterfaceEntry& entry = place->second;
  entry.node = std::move(node);
  if (mKinds.IsListed(aInterface.GetType()))
    Append(aTree, nullptr, *entry.node, entry.shown);
}

void FinderModel::Refresh(IFinderTree& aTree, bool aShowUnreachable) {
  const std::lock_guard lock(mDataLock);
  const std::uint32_t now = mClock();
  SyncInterfaces(aTree);
  DeleteMoved(aTree, now);
  ShowDevices(aTree, aShowUnreachable);
  DropDevices(aTree, aShowUnreachable, now);
  for (auto& [key, entry] : mDevices) {
    if (entry.node->GetTreeItem())
      SyncIcon(aTree, *entry.node, entry.shown);
  }
  aTree.ExpandRoots();
}

void FinderModel::SyncInterfaces(IFinderTree& aTree) {
  const TreeItemInfo* const selected = aTree.GetSelected();
  for (auto& [key, entry] : mInterfaces) {
    if (!entry.node->GetTreeItem())
      continue;
    SyncIcon(aTree, *entry.node, entry.shown);
    SyncText(aTree, *entry.node, entry.shown);
    if (entry.node.get() == selected)
      aTree.UpdateLists(*entry.node);
  }
}

// A device that is reported on two interfaces in turn stays where it is; one that was carried over has fallen silent on
// the former.
void FinderModel::DeleteMoved(IFinderTree& aTree, std::uint32_t aNowMs) {
  for (auto& [key, entry] : mDevices) {
    if (entry.node->GetTreeItem() && entry.shownUnder != entry.node->GetInterfaceKey() &&
        IsTooOld(entry.lastReportThere, aNowMs))
      DeleteItem(aTree, entry);
  }
}

void FinderModel::ShowDevices(IFinderTree& aTree, bool aShowUnreachable) {
  const TreeItemInfo* const selected = aTree.GetSelected();
  for (auto& [key, entry] : mDevices) {
    TreeItemInfoDevice& node = *entry.node;
    if (!node.GetTreeItem() && (node.IsReachable() || aShowUnreachable))
      ShowDevice(aTree, entry);
    if (!node.GetTreeItem())
      continue;
    SyncText(aTree, node, entry.shown);
    if (&node == selected)
      aTree.UpdateLists(node);
  }
}

void FinderModel::ShowDevice(IFinderTree& aTree, DeviceEntry& aEntry) {
  const TreeItemInfoInterface* const owner = FindInterfaceOf(*aEntry.node);
  if (!owner || !owner->GetTreeItem())
    return;
  Append(aTree, owner->GetTreeItem(), *aEntry.node, aEntry.shown);
  aEntry.shownUnder = aEntry.node->GetInterfaceKey();
  aEntry.lastReportThere = aEntry.node->GetLastUpdate();
}

void FinderModel::DropDevices(IFinderTree& aTree, bool aShowUnreachable, std::uint32_t aNowMs) {
  for (auto place = mDevices.begin(); place != mDevices.end();) {
    DeviceEntry& entry = place->second;
    const bool isTooOld = IsTooOld(entry.node->GetLastUpdate(), aNowMs);
    const bool isHidden = !entry.node->IsReachable() && !aShowUnreachable;
    if (entry.node->GetTreeItem() && (isTooOld || isHidden))
      DeleteItem(aTree, entry);
    place = isTooOld ? mDevices.erase(place) : std::next(place);
  }
}

// The tree may tell its own change of selection meanwhile: the node still lives.
void FinderModel::DeleteItem(IFinderTree& aTree, DeviceEntry& aEntry) {
  aTree.Delete(aEntry.node->GetTreeItem());
  aEntry.node->SetTreeItem(nullptr);
  aEntry.shownUnder.clear();
}

TreeItemInfoInterface* FinderModel::FindInterfaceOf(const TreeItemInfoDevice& aDevice) const {
  const std::lock_guard lock(mDataLock);
  const auto place = mInterfaces.find(aDevice.GetInterfaceKey());
  return place == mInterfaces.end() ? nullptr : place->second.node.get();
}

std::size_t FinderModel::CountHidden() const {
  const std::lock_guard lock(mDataLock);
  std::set<std::pair<KrDeviceInfoType, KrString>> hidden;
  for (const auto& [key, entry] : mDevices) {
    if (!entry.node->GetTreeItem() && !entry.node->IsReachable())
      hidden.emplace(entry.node->GetType(), entry.node->GetUniqueID());
  }
  return hidden.size();
}

std::optional<FinderModel::NodeKey> FinderModel::FindKey(const TreeItemInfo* aInfo) const {
  const std::lock_guard lock(mDataLock);
  const auto isIt = [aInfo](const auto& aEntry) { return aEntry.second.node.get() == aInfo; };
  if (const auto place = std::ranges::find_if(mInterfaces, isIt); place != mInterfaces.end())
    return NodeKey{place->first};
  if (const auto place = std::ranges::find_if(mDevices, isIt); place != mDevices.end())
    return NodeKey{place->first.first, place->first.second};
  return std::nullopt;
}

TreeItemInfo* FinderModel::FindNode(const NodeKey& aKey) const {
  const std::lock_guard lock(mDataLock);
  if (aKey.type) {
    const auto place = mDevices.find({aKey.key, *aKey.type});
    return place == mDevices.end() ? nullptr : place->second.node.get();
  }
  const auto place = mInterfaces.find(aKey.key);
  return place == mInterfaces.end() ? nullptr : place->second.node.get();
}

std::vector<const KrInterface*> FinderModel::GetInterfaces() const {
  std::vector<const KrInterface*> interfaces;
  for (std::size_t i = 0; i < mSystem.GetInterfaceCount(); ++i) {
    if (const KrInterface* const interface = mSystem.GetInterface(i))
      interfaces.push_back(interface);
  }
  return interfaces;
}

namespace {

const KrDeviceInfo* FindDevice(const KrInterface& aInterface, const TreeItemInfoDevice& aNode) {
  for (std::size_t i = 0; i < aInterface.GetDeviceCount(); ++i) {
    const KrDeviceInfo* const device = aInterface.GetDeviceInfo(i);
    if (device && device->GetType() == aNode.GetType() && device->GetUniqueID() == aNode.GetUniqueID())
      return device;
  }
  return nullptr;
}

} // namespace

FinderSelection FindSelection(const KrSystem& aSystem, const FinderModel& aModel, const TreeItemInfo& aSelected) {
  const std::lock_guard lock(aModel.GetDataLock());
  const auto* const device = dynamic_cast<const TreeItemInfoDevice*>(&aSelected);
  const TreeItemInfo* const owner = device ? aModel.FindInterfaceOf(*device) : &aSelected;
  for (std::size_t i = 0; owner && i < aSystem.GetInterfaceCount(); ++i) {
    const KrInterface* const interface = aSystem.GetInterface(i);
    if (!interface || interface->GetUniqueID() != owner->GetUniqueID())
      continue;
    if (!device)
      return {interface, nullptr};
    if (const KrDeviceInfo* const found = FindDevice(*interface, *device))
      return {interface, found};
  }
  return {};
}

} // namespace krgui
