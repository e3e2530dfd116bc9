#pragma once
// The property grid of the feature browser as a widget of its own, for applications that build their own browser: rows
// of features with their values, painted and edited. Which features are in it, and when they are read, is left to
// whoever fills it.

#include "krbase/krstring.h"
#include "krgenicam/krgencategory.h"
#include "krgenicam/krgenparameter.h"

#include <QWidget>

#include <cstdint>
#include <functional>
#include <memory>

namespace krgui {
class MessageQueue;
class PropertiesGrid;
} // namespace krgui

/// A two-column grid. Rows follow their features by themselves once they were read: changes that the array tells of
/// are shown. Nothing is read from a device while painting.
///
/// Thread: the user-interface thread alone.
/// Ownership: a widget, which belongs to its parent; borrows features and categories, which must outlive its rows.
///
///     auto* grid = new PropertiesCtrl(this);
///     for (std::size_t index = 0; index < array.GetCount(); ++index)
///       grid->AppendFeature(0, array[index]->GetName(), *array[index]);
///     grid->Refresh();
class KR_EXPORT PropertiesCtrl : public QWidget {
public:
  /// An empty grid, owned by its parent where there is one.
  explicit PropertiesCtrl(QWidget* aParent = nullptr);
  /// For the library's own windows: one whose messages come by a window's queue, which hands them to the grid.
  PropertiesCtrl(QWidget* aParent, std::shared_ptr<krgui::MessageQueue> aQueue);
  ~PropertiesCtrl() override;

  /// Appends a row under a category's row, or at the top level for 0. Gives the row, 0 where aParent is no category's
  /// row. A row's number is never given again.
  std::uint64_t AppendCategory(std::uint64_t aParent, const KrString& aName, KrGenCategory& aCategory);
  /// The same for a feature's row.
  std::uint64_t AppendFeature(std::uint64_t aParent, const KrString& aName, KrGenParameter& aParameter);
  /// Takes all rows away; an edit that is under way is dropped.
  void Clear();
  /// Reads every feature; waits for the device.
  void Refresh();

  /// Display names instead of feature names, in the rows that are there and in those to come. Values of enumerations,
  /// which are names of entries, follow when they are read the next time.
  void SetShowsDisplayNames(bool aShowsDisplayNames);
  /// Marks in every row the first place where its name contains a text, whatever the case; empty for none. For an
  /// application's own search: GenBrowserSearchBar does it by itself. Selects nothing.
  void SetSearchText(const KrString& aText);
  /// Up to which visibility the entries of enumerations are offered.
  void SetVisibility(KrGenVisibility aVisibility);

  /// The selected row, 0 for none.
  std::uint64_t GetSelected() const;
  /// Selects a row and brings it into view; 0 selects none.
  void Select(std::uint64_t aRow);
  /// The feature of a row; null for a category's and for one that is not there.
  KrGenParameter* GetParameter(std::uint64_t aRow) const;
  /// The text of the description pane for a row, with "\n" and <b>…</b>; asks the device for bounds.
  KrString GetDescription(std::uint64_t aRow) const;
  /// Called when another row, or none, has been selected. One at a time; null for none.
  void SetSelectionHandler(std::function<void()> aHandler);

  /// Whether the user has written a value.
  bool HasChanged() const;
  /// Has HasChanged begin anew.
  void ResetChanged();

  /// For the library's own windows.
  krgui::PropertiesGrid& GetGrid() const { return *mGrid; }

private:
  krgui::PropertiesGrid* mGrid; ///< A child widget.
};
