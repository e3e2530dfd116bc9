#pragma once
// The device finder's implementation window: ties what discovery finds to the tree, the information lists and the
// buttons. What the nodes are is decided by the model, when discovery runs by FinderDiscovery.

#include "frame/tabledwnd.h"
#include "krsystem/krsystem.h"
#include "logic/finder/accessmemory.h"
#include "logic/finder/findermodel.h"

#include <QPointer>

#include <functional>
#include <memory>
#include <optional>

class QMenu;
class QObject;
class QPoint;

namespace krgui {

class DeviceList;
class FinderDiscovery;
class FinderTree;

class DeviceFinderWnd : public TabledWnd, private KrSystemEventSink {
public:
  /// aFilter is asked about every report of a device, on any thread. aAccepted is told that a device was accepted, and
  /// may delete this window.
  explicit DeviceFinderWnd(std::function<bool(const KrDeviceInfo*)> aFilter, std::function<void()> aAccepted = {});
  ~DeviceFinderWnd() override;

  const KrDeviceInfo* GetSelected() const { return mSelected; }
  FinderKinds& GetKinds() { return mKinds; }
  const FinderKinds& GetKinds() const { return mKinds; }
  /// Holds from the next opening on; the user may change it in the window.
  void SetUnreachableShown(bool aIsShown) { mShowsUnreachable = aIsShown; }
  bool IsUnreachableShown() const { return mShowsUnreachable; }

protected:
  bool OnInitDialog() override;
  bool OnMessage(const Message& aMessage) override;
  void OnOK() override;
  void OnDestroy() override;

private:
  void OnDeviceFound(const KrInterface* aInterface, const KrDeviceInfo* aDevice, bool& aIgnore) override;

  void MakeControls();
  void WireControls();
  void ShowNetworkControls();
  void StartDiscovery();

  void Refresh();
  void Rebuild();
  void UpdateHint();
  /// What a rebuild takes away from the user and the next refresh gives back.
  struct View {
    std::optional<FinderModel::NodeKey> selected;
    int scroll = 0;
  };
  View TakeView();
  void RestoreView();

  void OnSelectionChanged();
  void ShowNode(TreeItemInfo& aInfo);
  void EnableActions();
  /// What can be done with the selected node.
  FinderActions FindActions() const;
  /// What is selected, in the system; the find lock is held.
  FinderSelection FindSelected() const;
  void OnDoubleClick();
  void ShowMenu(const QPoint& aScreenPoint);

  void SetIPAddress();
  void SelectFromIP();
  void ShowUnreachable(bool aShow);
  void Diagnose();
  void Accept(const KrDeviceInfo& aDevice);
  void TellAccepted() const;

  const std::function<bool(const KrDeviceInfo*)> mFilter;
  const std::function<void()> mAccepted;
  AccessMemory mAccess;
  std::unique_ptr<KrSystem> mSystem; ///< From the first opening on.
  FinderKinds mKinds;
  const KrDeviceInfo* mSelected = nullptr;
  bool mShowsUnreachable = false;
  std::optional<View> mView; ///< From a rebuild to the next refresh.

  // What follows is null while the window is not open.
  std::shared_ptr<FinderDiscovery> mDiscovery;
  std::unique_ptr<FinderTree> mTree;
  std::unique_ptr<DeviceList> mInterfaceList;
  std::unique_ptr<DeviceList> mDeviceList;
  /// What the controls call of this window ends with the opening: they may outlive it for a while.
  std::unique_ptr<QObject> mConnections;
  QPointer<QMenu> mMenu; ///< The context menu while it is open; owned by the dialog.
};

} // namespace krgui
