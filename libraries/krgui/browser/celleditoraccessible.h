#pragma once
// An editor that is open in a cell of the property grid as assistive technology reads it: a child of that cell. What
// an edit box and an up-down control have more is left to EditBoxAccessible and UpDownAccessible.

#include <QAccessibleWidget>

namespace krgui {

class PropertiesGrid;

/// The toolkit's own interfaces of such controls would be children of the grid's viewport, which is in no cell.
///
/// Thread: user interface. Ownership: the toolkit's cache, until its widget ends.
class CellEditorAccessible : public QAccessibleWidget {
public:
  CellEditorAccessible(QWidget& aEditor, QAccessible::Role aRole);

  /// Null for a widget that is no editor in a property grid.
  static QAccessibleInterface* Make(QObject* aObject);

  /// The cell that the editor is open on; the grid while it is on none.
  QAccessibleInterface* parent() const override;
  QString text(QAccessible::Text aText) const override;
  QAccessible::State state() const override;
  QStringList actionNames() const override;
  void doAction(const QString& aName) override;

protected:
  PropertiesGrid* FindGrid() const;
};

} // namespace krgui
