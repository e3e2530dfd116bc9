#pragma once
// The feature browser in a window on the screen, as a benchmark handles it.

#include "krgui/krgenbrowserwnd.h"

#include <QSize>
#include <QString>

class GenBrowserSearchBar;
class QTreeView;

namespace krgui {
class PropertiesGrid;
}

namespace benchmarks {

/// Thread: user interface. Ownership: borrows the array that it shows, which must be taken out before it ends.
class ShownBrowser {
public:
  /// Opens the window without an array. aMode from the first array on.
  explicit ShownBrowser(KrGenRefresh aMode);

  /// The window is on the screen with all that is measured.
  bool IsUsable() const { return mGrid && mSearchBar; }
  QSize GetGridSize() const;
  QTreeView& GetView() const;
  /// Shows an array, or none for null; returns when its rows are there.
  void Show(KrGenParameterArray* aArray) { mWindow.SetGenParameterArray(aArray); }
  std::size_t CountFeatures() const;
  bool IsAllRead() const;
  /// Types a text into the search field as a whole, which is one search.
  void Search(const QString& aText);

private:
  KrGenBrowserWnd mWindow;
  krgui::PropertiesGrid* mGrid = nullptr;
  GenBrowserSearchBar* mSearchBar = nullptr;
};

} // namespace benchmarks
