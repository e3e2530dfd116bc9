#pragma once
// The property grid as assistive technology reads it: a tree of rows with a cell for the name and one for the value.
// What a cell says of itself is left to GridCellAccessible.

#include <QAccessibleWidget>

#include <cstdint>
#include <map>
#include <utility>

namespace krgui {

class PropertiesGrid;

/// The toolkit's own interface of a tree view knows neither values that cannot be written nor ones that are not
/// available. Counts children as it does, because the view's own notifications name them by number: two header cells,
/// then the rows that are not in a closed category, two cells each.
///
/// Thread: user interface. Ownership: the toolkit's cache; its cells are in there, too, and go with it.
class GridAccessible final : public QAccessibleWidget, public QAccessibleTableInterface {
public:
  explicit GridAccessible(PropertiesGrid& aGrid);
  ~GridAccessible() override;

  /// Lets the toolkit find this for every property grid; once is enough.
  static void Install();
  // What those who listen are told; nothing is done while nobody does.

  /// A row's value, state or what is wrong with it may be another one. Off the screen only cells that somebody asked
  /// for are looked at.
  static void TellRowChanged(PropertiesGrid& aGrid, std::uint64_t aItem, bool aIsOnScreen);
  /// A category was opened or closed, and its rows came or went.
  static void TellOpened(PropertiesGrid& aGrid, std::uint64_t aItem, bool aIsOpen);
  /// Other rows than before are to be seen, too many to tell of each.
  static void TellAllRowsChanged(PropertiesGrid& aGrid);
  /// The grid has got the focus: which row has it.
  static void TellFocus(PropertiesGrid& aGrid);

  void* interface_cast(QAccessible::InterfaceType aType) override;
  int childCount() const override;
  QAccessibleInterface* child(int aIndex) const override;
  QAccessibleInterface* childAt(int aX, int aY) const override;
  int indexOfChild(const QAccessibleInterface* aChild) const override;
  QAccessibleInterface* focusChild() const override;

  QAccessibleInterface* caption() const override { return nullptr; }
  QAccessibleInterface* summary() const override { return nullptr; }
  QAccessibleInterface* cellAt(int aRow, int aColumn) const override;
  int selectedCellCount() const override;
  QList<QAccessibleInterface*> selectedCells() const override;
  QString columnDescription(int aColumn) const override;
  QString rowDescription(int aRow) const override;
  int selectedColumnCount() const override { return 0; }
  int selectedRowCount() const override;
  int columnCount() const override;
  int rowCount() const override;
  QList<int> selectedColumns() const override { return {}; }
  QList<int> selectedRows() const override;
  bool isColumnSelected(int) const override { return false; }
  bool isRowSelected(int aRow) const override;
  bool selectRow(int aRow) override;
  bool selectColumn(int) override { return false; }
  bool unselectRow(int aRow) override;
  bool unselectColumn(int) override { return false; }
  void modelChange(QAccessibleTableModelChangeEvent* aEvent) override;

  /// The row's number among those that are not in a closed category; -1 where it is.
  int FindRow(std::uint64_t aItem) const;
  QAccessibleInterface* GetCell(std::uint64_t aItem, int aColumn) const;

private:
  PropertiesGrid& GetGrid() const;
  std::uint64_t FindItem(int aRow) const;
  void ForgetCells();

  /// What a cell said when somebody looked at it last.
  struct Said {
    QString name;
    QString description;
    QAccessible::State state;
  };
  struct Cell {
    QAccessible::Id id = 0;
    Said said;
  };

  static Said Ask(const QAccessibleInterface& aCell);
  static GridAccessible* FindListened(PropertiesGrid& aGrid);
  int FindChild(std::uint64_t aItem, int aColumn) const;
  int CountShownBelow(std::uint64_t aItem) const;
  void TellCell(std::uint64_t aItem, int aColumn);
  void TellText(QAccessible::Event aEvent, int aChild);
  void TellRows(QAccessibleTableModelChangeEvent::ModelChangeType aChange, int aFirst, int aLast);

  using CellKey = std::pair<std::uint64_t, int>;
  mutable std::map<CellKey, Cell> mCells; ///< Those that somebody asked for.
};

} // namespace krgui
