#pragma once
// The feature browser's implementation window: ties array, grid, search row, description, options and refresh together.
// Which rows there are is left to logic/browser/browserfilling.h, how values are kept fresh to BrowserRefresh, rows and
// editing to PropertiesGrid, where the controls are to BrowserControls.

#include "frame/tabledwnd.h"
#include "logic/browser/browserfilling.h"
#include "logic/browser/browserrefresh.h"

#include <memory>
#include <stop_token>

class QObject;
class QTimer;

namespace krgui {

class BrowserControls;
class WindowKeys;

class GenBrowserWnd : public TabledWnd {
public:
  /// How large a user can make a window of its own at the least, in pixels. The position's clamp is another one.
  static constexpr int kLeastTrackedWidth = 390;
  static constexpr int kLeastTrackedHeight = 550;
  static constexpr int kErrorIntervalMs = 1000;

  /// aFilter is asked about each feature when the window is filled. It may close or delete the window or give it
  /// another array; the array that it is asked for must live until it returns.
  /// Errors are looked for again and again, after as many milliseconds.
  explicit GenBrowserWnd(FeatureFilter aFilter, const RefreshRhythm& aRhythm = {},
                         int aErrorIntervalMs = kErrorIntervalMs);
  ~GenBrowserWnd() override;

  void SetGenParameterArray(KrGenParameterArray* aArray);
  KrGenVisibility GetVisibility();
  void SetVisibility(KrGenVisibility aVisibility);
  KrGenRefresh GetRefreshMode() const { return mOptions.refreshMode; }
  void SetRefreshMode(KrGenRefresh aMode);
  bool HasChanged() const;
  void ResetChanged();
  void Refresh();
  /// Whether a thread of the window's own keeps values fresh.
  bool IsRefreshThreadRunning() const { return mRefresh && mRefresh->IsRunning(); }
  void LoadOptions(const KrPropertyList& aList);
  void SaveOptions(KrPropertyList& aList);

  // What the search bar needs of the window that it stands in.
  bool ShowsDisplayNames() const { return mOptions.showsDisplayNames; }
  void ShowSearchResult(const KrString& aText);

protected:
  bool OnInitDialog() override;
  void OnSize(const QSize& aSize) override;
  bool OnMessage(const Message& aMessage) override;
  /// The Enter key does nothing here.
  void OnOK() override;
  void OnDestroy() override;

private:
  /// One filling of the rows. It is over, and its filter asks nobody any more, when the window was closed or deleted
  /// meanwhile or is to be filled anew.
  struct Filling {
    bool isWindowGone = false;
    bool isOutdated = false;
    bool IsOver() const { return isWindowGone || isOutdated; }
  };

  void WireControls();
  void WireDescription();
  void WireKeys();
  void Rebuild();
  /// One rebuild; what the application does in its filter may make it in vain.
  void Fill(Filling& aFilling);
  void FillGrid(Filling& aFilling);
  void TakeRowsAway();
  void StartRefresh();
  void EnableActions();
  void SelectVisibility();
  void UpdateDescription();
  void ShowAll(bool aIsOpen);
  void ChooseOptions();
  void SetOptions(const BrowserOptions& aOptions);
  void PerformMenu(int aCommandID);
  void SaveFeatures();
  void RestoreFeatures();
  /// Ends the dialogs of saving and restoring, which borrow the array.
  void EndSettings();

  KrGenParameterArray* mArray = nullptr;
  BrowserOptions mOptions;
  FeatureFilter mFilter;
  const RefreshRhythm mRhythm;
  const int mErrorIntervalMs;
  std::stop_source mSettingsEnd; ///< Ends what saves or restores features at the moment.
  /// Expires with the window, which may end while features are restored.
  const std::shared_ptr<const bool> mAlive = std::make_shared<const bool>(true);
  bool mHasChanged = false; ///< While the window is not open; an open one's grid knows.
  int mDescriptionHeight;
  std::shared_ptr<Filling> mFilling; ///< Null unless the rows are being filled; shared with those who fill them.

  // What follows is null while the window is not open.
  std::unique_ptr<BrowserControls> mControls;
  std::unique_ptr<BrowserRefresh> mRefresh;
  /// What the controls call of this window ends with the opening: they may outlive it for a while.
  std::unique_ptr<QObject> mConnections;
  QTimer* mDescriptionTimer = nullptr; ///< Belongs to the connections.
  std::unique_ptr<WindowKeys> mKeys;
};

} // namespace krgui
