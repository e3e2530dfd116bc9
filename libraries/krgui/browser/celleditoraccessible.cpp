#include "browser/celleditoraccessible.h"

#include "browser/editboxaccessible.h"
#include "browser/genbrowsercombobox.h"
#include "browser/gridaccessible.h"
#include "browser/gridmodel.h"
#include "browser/propertiesgrid.h"
#include "browser/updownaccessible.h"
#include "browser/updowncontrol.h"

#include <QAbstractButton>
#include <QLineEdit>

namespace krgui {

namespace {

/// Editors are children of the viewport.
PropertiesGrid* FindGridAround(const QWidget& aEditor) {
  const QWidget* viewport = aEditor.parentWidget();
  return viewport != nullptr ? qobject_cast<PropertiesGrid*>(viewport->parentWidget()) : nullptr;
}

} // namespace

CellEditorAccessible::CellEditorAccessible(QWidget& aEditor, QAccessible::Role aRole)
    : QAccessibleWidget(&aEditor, aRole) {}

QAccessibleInterface* CellEditorAccessible::Make(QObject* aObject) {
  auto* widget = qobject_cast<QWidget*>(aObject);
  if (widget == nullptr || FindGridAround(*widget) == nullptr)
    return nullptr;
  if (auto* editBox = qobject_cast<QLineEdit*>(widget))
    return new EditBoxAccessible(*editBox);
  if (auto* upDown = qobject_cast<UpDownControl*>(widget))
    return new UpDownAccessible(*upDown);
  if (qobject_cast<GenBrowserComboBox*>(widget) != nullptr)
    return new CellEditorAccessible(*widget, QAccessible::ComboBox);
  return qobject_cast<QAbstractButton*>(widget) != nullptr ? new CellEditorAccessible(*widget, QAccessible::Button)
                                                           : nullptr;
}

PropertiesGrid* CellEditorAccessible::FindGrid() const {
  return widget() != nullptr ? FindGridAround(*widget()) : nullptr;
}

QAccessibleInterface* CellEditorAccessible::parent() const {
  PropertiesGrid* grid = FindGrid();
  QAccessibleInterface* table = grid != nullptr ? QAccessible::queryAccessibleInterface(grid) : nullptr;
  const auto* accessible = dynamic_cast<const GridAccessible*>(table);
  if (accessible == nullptr || grid->GetEdited() == kNoItem || !widget()->isVisible())
    return table;
  return accessible->GetCell(grid->GetEdited(), GridModel::kValueColumn);
}

QString CellEditorAccessible::text(QAccessible::Text aText) const {
  const auto* comboBox = qobject_cast<const QComboBox*>(widget());
  if (aText == QAccessible::Value && comboBox != nullptr)
    return comboBox->currentText();
  return QAccessibleWidget::text(aText);
}

QAccessible::State CellEditorAccessible::state() const {
  QAccessible::State state = QAccessibleWidget::state();
  if (const auto* comboBox = qobject_cast<const GenBrowserComboBox*>(widget())) {
    state.hasPopup = true;
    state.expandable = true;
    state.expanded = comboBox->IsListOpen();
    state.collapsed = !comboBox->IsListOpen();
  }
  return state;
}

QStringList CellEditorAccessible::actionNames() const {
  QStringList names = QAccessibleWidget::actionNames();
  if (role() == QAccessible::ComboBox)
    names.prepend(showMenuAction());
  else if (role() == QAccessible::Button)
    names.prepend(pressAction());
  return names;
}

void CellEditorAccessible::doAction(const QString& aName) {
  auto* comboBox = qobject_cast<QComboBox*>(widget());
  auto* button = qobject_cast<QAbstractButton*>(widget());
  if (aName == showMenuAction() && comboBox != nullptr)
    comboBox->showPopup();
  else if (aName == pressAction() && button != nullptr)
    button->click();
  else
    QAccessibleWidget::doAction(aName);
}

} // namespace krgui
