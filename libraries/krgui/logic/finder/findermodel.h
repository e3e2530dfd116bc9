#pragma once
// The finder's two maps of nodes: what a report of discovery does to them, what a pass over the tree does to that, and
// when a device has grown too old. The tree itself is the window's, who sends the messages is too.

#include "krsystem/krsystem.h"
#include "logic/finder/finderkinds.h"
#include "logic/finder/treeiteminfo.h"

#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace krgui {

/// The finder's tree, as far as the model works on it.
///
/// Thread: user interface. The handle of an item is the window's own; an item knows the node that it shows.
class IFinderTree {
public:
  virtual ~IFinderTree() = default;
  /// Appends an item; null for a root.
  virtual TreeItem Append(TreeItem aParent, const KrString& aText, int aIcon, TreeItemInfo& aInfo) = 0;
  virtual void Delete(TreeItem aItem) = 0;
  virtual void DeleteAll() = 0;
  /// Each does something only where the item shows something else.
  virtual void SyncText(TreeItem aItem, const KrString& aText) = 0;
  virtual void SyncIcon(TreeItem aItem, int aIcon) = 0;
  virtual void ExpandRoots() = 0;
  virtual void ClearSelection() = 0;
  /// The node of the selected item, or null.
  virtual TreeItemInfo* GetSelected() const = 0;
  /// The selected node has changed: its lists are to be brought up to date.
  virtual void UpdateLists(TreeItemInfo& aInfo) = 0;
};

/// The maps.
///
/// Thread: TakeReport on the discovery thread and, while a rebuild replays, on the window's; the rest on the window's.
/// Every operation takes the data lock; a thread that holds it may take it again.
/// Ownership: borrows the system and the kinds; owns the nodes.
class FinderModel {
public:
  /// How old a device may grow without being reported.
  static constexpr std::uint32_t kMaxAgeMs = 2000;

  /// What the reporter does next.
  enum class Next {
    Nothing,
    Refresh, ///< Post the refresh message.
    Rebuild, ///< Send the rebuild message, without the lock, and wait.
  };

  /// aClock gives milliseconds that may wrap; any thread.
  FinderModel(const KrSystem& aSystem, const FinderKinds& aKinds, std::function<std::uint32_t()> aClock);
  ~FinderModel();

  /// The lock that guards maps and nodes: held by the window while it works on a node, and through a replay.
  std::recursive_mutex& GetDataLock() const { return mDataLock; }

  /// One report: an interface alone, or a device behind one. The application was asked about the device before.
  Next TakeReport(const KrInterface* aInterface, const KrDeviceInfo* aDevice);
  /// Whether an interface of the map is none of the system's any more, so that the tree has to be built anew.
  bool HasLostInterface() const;

  /// Clears the selection, destroys every node and empties the tree.
  void Clear(IFinderTree& aTree);
  /// Makes the tree's roots anew from the system's interfaces. The maps are empty.
  void BuildInterfaces(IFinderTree& aTree);
  /// One pass: synchronises the tree with the maps and drops what has grown too old.
  void Refresh(IFinderTree& aTree, bool aShowUnreachable);

  /// The node of the interface behind which a device was reported; null where there is none.
  TreeItemInfoInterface* FindInterfaceOf(const TreeItemInfoDevice& aDevice) const;
  /// How many devices have no item because this host cannot reach them; one that answers on two adapters is one.
  std::size_t CountHidden() const;

  /// What tells a node from all others, also after the tree was built anew; without a kind of device for an interface.
  struct NodeKey {
    std::string key;
    std::optional<KrDeviceInfoType> type = {};
  };
  /// The key of one of the maps' nodes; nothing when it is none of them, or is no more.
  std::optional<NodeKey> FindKey(const TreeItemInfo* aInfo) const;
  /// The node of a key; null when there is none.
  TreeItemInfo* FindNode(const NodeKey& aKey) const;

private:
  // What a tree item shows is remembered beside its node, so that a pass asks the tree only about what changed.
  struct Shown {
    KrString text;
    int icon = 0;
  };
  struct InterfaceEntry {
    std::unique_ptr<TreeItemInfoInterface> node;
    Shown shown;
  };
  struct DeviceEntry {
    std::unique_ptr<TreeItemInfoDevice> node;
    Shown shown;
    std::string shownUnder;            // The key of the interface whose item is the parent; empty without an item.
    std::uint32_t lastReportThere = 0; // When the device was last reported on that interface.
  };
  // Devices of two kinds may state the same MAC address: each has a node of its own.
  using DeviceKey = std::pair<std::string, KrDeviceInfoType>;

  std::vector<const KrInterface*> GetInterfaces() const;
  // False for a kind without nodes.
  bool TakeDevice(const KrInterface* aInterface, const std::string& aInterfaceKey, const KrDeviceInfo& aDevice);
  void AddRoot(IFinderTree& aTree, InterfaceSpan aAll, const KrInterface& aInterface);
  void SyncInterfaces(IFinderTree& aTree);
  void DeleteMoved(IFinderTree& aTree, std::uint32_t aNowMs);
  void ShowDevices(IFinderTree& aTree, bool aShowUnreachable);
  void ShowDevice(IFinderTree& aTree, DeviceEntry& aEntry);
  void DropDevices(IFinderTree& aTree, bool aShowUnreachable, std::uint32_t aNowMs);
  static void DeleteItem(IFinderTree& aTree, DeviceEntry& aEntry);

  const KrSystem& mSystem;
  const FinderKinds& mKinds;
  const std::function<std::uint32_t()> mClock;
  mutable std::recursive_mutex mDataLock; // Guards both maps and their nodes.
  std::map<std::string, InterfaceEntry> mInterfaces;
  std::map<DeviceKey, DeviceEntry> mDevices;
};

/// What a selected node stands for in the system at this moment; both null when it is no more.
struct FinderSelection {
  const KrInterface* interface = nullptr;
  const KrDeviceInfo* device = nullptr;
};

/// Finds interface and device by their unique IDs; for an interface the device stays null. The find lock is held, so
/// that the lists stay as they are; the data lock is taken, because interfaces are reported without the find lock.
FinderSelection FindSelection(const KrSystem& aSystem, const FinderModel& aModel, const TreeItemInfo& aSelected);

} // namespace krgui
