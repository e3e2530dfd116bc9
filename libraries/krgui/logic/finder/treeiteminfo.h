#pragma once
// What the finder's tree and lists show for one node: its text, picture and rows, read from discovery's objects at the
// moment it is filled. Nothing of those is kept. Each kind of node is a class of its own.

#include "krbase/krstring.h"
#include "krsystem/krdeviceinfo.h"
#include "krsystem/krinterface.h"
#include "logic/finder/findericon.h"
#include "logic/finder/informationrow.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <string>
#include <vector>

namespace krgui {

/// The window's handle of a tree item; null for none. Only the window knows what is behind it.
using TreeItem = void*;

/// All interfaces of the host at one moment, as an adapter's rows compare it with the others.
using InterfaceSpan = std::span<const KrInterface* const>;

/// The base of all nodes.
///
/// Thread: the holder's lock guards every object (FinderModel).
class TreeItemInfo {
public:
  TreeItemInfo() = default;
  virtual ~TreeItemInfo() = default;
  TreeItemInfo(const TreeItemInfo&) = delete;
  TreeItemInfo& operator=(const TreeItemInfo&) = delete;

  virtual bool IsDevice() const { return false; }
  virtual bool IsInterface() const { return false; }

  const KrString& GetDisplayName() const { return mDisplayName; }
  const KrString& GetUniqueID() const { return mUniqueID; }
  const std::vector<InfoRow>& GetRows() const { return mRows; }
  /// The place in the image strip.
  int GetIcon() const { return mIcon; }
  /// Null while the node is not shown. Set and cleared by the finder.
  TreeItem GetTreeItem() const { return mTreeItem; }
  void SetTreeItem(TreeItem aItem) { mTreeItem = aItem; }

protected:
  void SetIcon(FinderIcon aIcon) { mIcon = static_cast<int>(aIcon); }
  void AddRow(const char* aCaption, const KrString& aValue, RowColour aColour = kNoRowColour) {
    mRows.push_back({aCaption, aValue, aColour});
  }

  KrString mDisplayName;
  KrString mUniqueID;
  TreeItem mTreeItem = nullptr;
  std::vector<InfoRow> mRows;
  int mIcon = 0;
};

/// A network adapter or a USB host controller.
class TreeItemInfoInterface : public TreeItemInfo {
public:
  bool IsInterface() const override { return true; }
  /// Empties the rows and appends those of the interface.
  virtual void FillInfo(InterfaceSpan aAll, const KrInterface& aInterface) = 0;
  virtual void UpdateIcon(InterfaceSpan aAll, const KrInterface& aInterface) = 0;

  /// Fills everything anew.
  void InitInterface(InterfaceSpan aAll, const KrInterface& aInterface);
  KrInterfaceType GetType() const { return mType; }

private:
  KrInterfaceType mType = KrInterfaceType::USBHostController;
};

/// Asks who controls the device of an address: 1 nobody, 2 controlled, 3 exclusively, 4 read only, others unknown.
using AccessQuery = std::function<std::int32_t(const KrString& aAddress)>;

/// A device of any kind.
class TreeItemInfoDevice : public TreeItemInfo {
public:
  /// aEnabled chooses between the kind's pictures and the greyed-out one.
  TreeItemInfoDevice(bool aEnabled, std::uint32_t aNowMs) : mLastUpdateMs(aNowMs), mIsEnabled(aEnabled) {}

  bool IsDevice() const override { return true; }
  /// Fills what is only asked for once the device is selected; most kinds have nothing of that kind.
  virtual void RefreshInfo(const AccessQuery&) {}
  /// Empties the rows and appends those of the device.
  virtual void FillInfo(const KrDeviceInfo& aDevice) = 0;
  virtual void UpdateIcon(const KrDeviceInfo& aDevice) = 0;

  /// Fills everything anew and notes the time.
  void InitDevice(const KrDeviceInfo& aDevice, std::uint32_t aNowMs);

  /// The key of the interface on which the device was last reported; set by the finder.
  const std::string& GetInterfaceKey() const { return mInterfaceKey; }
  void SetInterfaceKey(const std::string& aKey) { mInterfaceKey = aKey; }
  /// Whether this host can reach the device as it is configured.
  bool IsReachable() const { return mIsReachable; }
  bool IsEnabled() const { return mIsEnabled; }
  /// Milliseconds of the finder's clock, which wraps.
  std::uint32_t GetLastUpdate() const { return mLastUpdateMs; }
  KrDeviceInfoType GetType() const { return mType; }

protected:
  std::string mInterfaceKey;
  bool mIsReachable = true;
  std::uint32_t mLastUpdateMs;
  KrDeviceInfoType mType = KrDeviceInfoType::GEV;
  const bool mIsEnabled;
};

/// The node for an interface; null for a kind that is none of ours.
std::unique_ptr<TreeItemInfoInterface> CreateInterfaceInfo(const KrInterface& aInterface);

/// The node for a device; null for a kind that is none of ours. The flags say which kinds can be selected; plain USB
/// devices never can.
std::unique_ptr<TreeItemInfoDevice> CreateDeviceInfo(const KrDeviceInfo& aDevice, bool aGEVEnabled, bool aU3VEnabled,
                                                     bool aTolvanEnabled, std::uint32_t aNowMs);

} // namespace krgui
