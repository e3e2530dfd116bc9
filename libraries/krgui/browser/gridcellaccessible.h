#pragma once
// One cell of the property grid as assistive technology reads it: a name or a value, what state it is in, and what is
// wrong with it.

#include "logic/browser/browsertree.h"

#include <QAccessible>
#include <QPointer>

class QWidget;

namespace krgui {

class GridModel;
class PropertiesGrid;

/// The item is kNoItem for a header's cell.
///
/// Thread: user interface. Ownership: the toolkit's cache; may outlive its row and its grid, and is not valid then.
class GridCellAccessible final : public QAccessibleInterface,
                                 public QAccessibleTableCellInterface,
                                 public QAccessibleActionInterface {
public:
  GridCellAccessible(PropertiesGrid& aGrid, GridItem aItem, int aColumn);
  ~GridCellAccessible() override;

  GridItem GetItem() const { return mItem; }

  void* interface_cast(QAccessible::InterfaceType aType) override;
  bool isValid() const override;
  QObject* object() const override { return nullptr; }
  QWindow* window() const override;
  QAccessibleInterface* parent() const override;
  /// The editor that is open on the cell.
  int childCount() const override;
  QAccessibleInterface* child(int aIndex) const override;
  QAccessibleInterface* childAt(int aX, int aY) const override;
  int indexOfChild(const QAccessibleInterface* aChild) const override;
  QString text(QAccessible::Text aText) const override;
  void setText(QAccessible::Text, const QString&) override {}
  QRect rect() const override;
  QAccessible::Role role() const override;
  QAccessible::State state() const override;

  int columnExtent() const override { return 1; }
  int rowExtent() const override { return 1; }
  QList<QAccessibleInterface*> columnHeaderCells() const override;
  QList<QAccessibleInterface*> rowHeaderCells() const override;
  int columnIndex() const override { return mColumn; }
  int rowIndex() const override;
  bool isSelected() const override;
  QAccessibleInterface* table() const override { return parent(); }

  QStringList actionNames() const override;
  void doAction(const QString& aName) override;
  QStringList keyBindingsForAction(const QString&) const override { return {}; }

private:
  const GridModel& GetModel() const;
  const BrowserTree::Item* FindItem() const;
  void AddFeatureState(QAccessible::State& aState) const;
  void AddCategoryState(QAccessible::State& aState) const;
  QList<QWidget*> FindEditors() const;

  const QPointer<PropertiesGrid> mGrid;
  const GridItem mItem;
  const int mColumn;
};

} // namespace krgui
