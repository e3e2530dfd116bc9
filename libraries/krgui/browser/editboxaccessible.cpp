#include "browser/editboxaccessible.h"

#include <QLineEdit>

#include <algorithm>

namespace krgui {

EditBoxAccessible::EditBoxAccessible(QLineEdit& aEditBox) : CellEditorAccessible(aEditBox, QAccessible::EditableText) {}

QLineEdit& EditBoxAccessible::GetEditBox() const {
  return *static_cast<QLineEdit*>(widget());
}

void* EditBoxAccessible::interface_cast(QAccessible::InterfaceType aType) {
  if (aType == QAccessible::TextInterface)
    return static_cast<QAccessibleTextInterface*>(this);
  if (aType == QAccessible::EditableTextInterface)
    return static_cast<QAccessibleEditableTextInterface*>(this);
  return CellEditorAccessible::interface_cast(aType);
}

QString EditBoxAccessible::text(QAccessible::Text aText) const {
  return aText == QAccessible::Value ? GetEditBox().text() : CellEditorAccessible::text(aText);
}

void EditBoxAccessible::setText(QAccessible::Text aText, const QString& aValue) {
  if (aText == QAccessible::Value)
    replaceText(0, characterCount(), aValue);
  else
    CellEditorAccessible::setText(aText, aValue);
}

QAccessible::State EditBoxAccessible::state() const {
  QAccessible::State state = CellEditorAccessible::state();
  state.editable = true;
  state.selectableText = true;
  state.readOnly = GetEditBox().isReadOnly();
  return state;
}

void EditBoxAccessible::selection(int aIndex, int* aStart, int* aEnd) const {
  const bool isThere = aIndex == 0 && GetEditBox().hasSelectedText();
  *aStart = isThere ? GetEditBox().selectionStart() : 0;
  *aEnd = isThere ? GetEditBox().selectionEnd() : 0;
}

int EditBoxAccessible::selectionCount() const {
  return GetEditBox().hasSelectedText() ? 1 : 0;
}

void EditBoxAccessible::addSelection(int aStart, int aEnd) {
  setSelection(0, aStart, aEnd);
}

void EditBoxAccessible::removeSelection(int aIndex) {
  if (aIndex == 0)
    GetEditBox().deselect();
}

void EditBoxAccessible::setSelection(int aIndex, int aStart, int aEnd) {
  if (aIndex == 0)
    GetEditBox().setSelection(aStart, aEnd - aStart);
}

int EditBoxAccessible::cursorPosition() const {
  return GetEditBox().cursorPosition();
}

void EditBoxAccessible::setCursorPosition(int aPosition) {
  GetEditBox().setCursorPosition(aPosition);
}

QString EditBoxAccessible::text(int aStart, int aEnd) const {
  return aStart < aEnd ? GetEditBox().text().mid(aStart, aEnd - aStart) : QString();
}

int EditBoxAccessible::characterCount() const {
  return static_cast<int>(GetEditBox().text().size());
}

/// The edit box tells where its cursor is alone, so the widths are those of the text, from the cursor on.
QRect EditBoxAccessible::characterRect(int aOffset) const {
  const QLineEdit& editBox = GetEditBox();
  if (aOffset < 0 || aOffset >= characterCount())
    return {};
  const QRect cursor = editBox.inputMethodQuery(Qt::ImCursorRectangle).toRect();
  const QFontMetrics metrics = editBox.fontMetrics();
  const QString text = editBox.displayText();
  const int left = cursor.center().x() + metrics.horizontalAdvance(text, aOffset) -
                   metrics.horizontalAdvance(text, editBox.cursorPosition());
  const QRect character(left, cursor.top(), metrics.horizontalAdvance(text.at(aOffset)), cursor.height());
  return character.translated(editBox.mapToGlobal(QPoint()));
}

int EditBoxAccessible::offsetAtPoint(const QPoint& aPoint) const {
  const QPoint inside = GetEditBox().mapFromGlobal(aPoint);
  return GetEditBox().rect().contains(inside) ? GetEditBox().cursorPositionAt(inside) : -1;
}

void EditBoxAccessible::scrollToSubstring(int aStart, int aEnd) {
  GetEditBox().setCursorPosition(aEnd);
  GetEditBox().setCursorPosition(aStart);
}

QString EditBoxAccessible::attributes(int, int* aStart, int* aEnd) const {
  *aStart = 0;
  *aEnd = characterCount();
  return {};
}

void EditBoxAccessible::deleteText(int aStart, int aEnd) {
  replaceText(aStart, aEnd, {});
}

void EditBoxAccessible::insertText(int aOffset, const QString& aText) {
  replaceText(aOffset, aOffset, aText);
}

/// The edit ends with the focus, so what is written while it is elsewhere would never reach the device.
void EditBoxAccessible::replaceText(int aStart, int aEnd, const QString& aText) {
  QLineEdit& editBox = GetEditBox();
  const int start = std::clamp(aStart, 0, characterCount());
  const int end = std::clamp(aEnd, start, characterCount());
  if (editBox.isReadOnly() || !editBox.isVisible())
    return;
  editBox.setFocus(Qt::OtherFocusReason);
  QString text = editBox.text();
  text.replace(start, end - start, aText);
  editBox.setText(text);
}

} // namespace krgui
