#pragma once
// The feature browser's implementation window: ties array, grid, search row, description, options and refresh together.
// Which rows there are is left to logic/browser/browserfilling.h, how values are kept fresh to BrowserRefresh, rows and
// editing to PropertiesGrid.

#include "frame/wnd.h"
#include "logic/browser/browserfilling.h"
#include "logic/browser/browserrefresh.h"
#include "res/templates.h"

#include <memory>

namespace krgui {

class GenBrowserWnd : public Wnd {
public:
  /// aFilter is asked about each feature when the window is filled.
  explicit GenBrowserWnd(FeatureFilter aFilter);
  ~GenBrowserWnd() override;

  int GetPopupTemplateID() const override { return kGenBrowserTraits.popupTemplate; }
  int GetChildTemplateID() const override { return kGenBrowserTraits.childTemplate; }
  int GetMinWidth() const override { return kGenBrowserTraits.minWidth; }
  int GetMaxWidth() const override { return kGenBrowserTraits.maxWidth; }
  int GetMinHeight() const override { return kGenBrowserTraits.minHeight; }
  int GetMaxHeight() const override { return kGenBrowserTraits.maxHeight; }

  void SetGenParameterArray(KrGenParameterArray* aArray);
  KrGenVisibility GetVisibility();
  void SetVisibility(KrGenVisibility aVisibility);
  KrGenRefresh GetRefreshMode() const { return mOptions.refreshMode; }
  void SetRefreshMode(KrGenRefresh aMode);
  bool HasChanged() const;
  void ResetChanged();
  void Refresh();
  void LoadOptions(const KrPropertyList& aList);
  void SaveOptions(KrPropertyList& aList);

  // What the search bar needs of the window that it stands in.
  bool ShowsDisplayNames() const { return mOptions.showsDisplayNames; }
  void ShowSearchResult(const KrString& aText);

private:
  KrGenParameterArray* mArray = nullptr;
  BrowserOptions mOptions;
  FeatureFilter mFilter;
};

} // namespace krgui
