#pragma once
// A table of texts for reading and copying, as long as it likes to be, with texts as long as they like. What is in the
// rows is left to the dialogs.

#include "krbase/krstring.h"

#include <QAbstractTableModel>
#include <QStringList>
#include <QTreeView>

#include <functional>
#include <utility>
#include <vector>

namespace krgui {

/// Where the texts are, which are asked for when they are shown. Thread: user interface.
struct SettingsRows {
  int count = 0;
  QStringList headings;
  std::function<KrString(int aRow, int aColumn)> getText;
  /// Whether a row is of less interest than others; empty for none.
  std::function<bool(int aRow)> isFaint = {};
};

class SettingsModel final : public QAbstractTableModel {
  Q_OBJECT

public:
  using QAbstractTableModel::QAbstractTableModel;

  void SetRows(SettingsRows aRows);
  const SettingsRows& GetRows() const { return mRows; }

  int rowCount(const QModelIndex& aParent = {}) const override;
  int columnCount(const QModelIndex& aParent = {}) const override;
  QVariant data(const QModelIndex& aIndex, int aRole) const override;
  QVariant headerData(int aSection, Qt::Orientation aOrientation, int aRole) const override;

private:
  SettingsRows mRows;
};

/// Ctrl+C copies the selected rows, their cells parted by tabs and whole, whatever is shown of them.
///
/// Thread: user interface. Ownership: its parent's.
class SettingsTable final : public QTreeView {
  Q_OBJECT

public:
  /// aShares says how the width is shared among the columns, in hundredths; the last takes what is left.
  SettingsTable(const QString& aName, std::vector<int> aShares, QWidget* aParent);

  void SetRows(SettingsRows aRows);
  /// All rows, with the headings.
  void CopyAll() const;
  /// The current row on lines of their own, with more of long texts than a cell shows; empty without one.
  QString DescribeCurrent() const;

Q_SIGNALS:
  void CurrentChanged();

protected:
  void currentChanged(const QModelIndex& aCurrent, const QModelIndex& aPrevious) override;
  void keyPressEvent(QKeyEvent* aEvent) override;
  void resizeEvent(QResizeEvent* aEvent) override;

private:
  void CopySelected() const;
  QString FormatRow(int aRow) const;

  SettingsModel* mModel;
  std::vector<int> mShares;
  bool mIsShared = false; // The columns have their widths, which are the user's from then on.
};

} // namespace krgui
