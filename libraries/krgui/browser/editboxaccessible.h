#pragma once
// The edit box in a cell of the property grid as assistive technology reads it and writes into it.

#include "browser/celleditoraccessible.h"

class QLineEdit;

namespace krgui {

/// What is written counts as typed: it goes to the device when the edit box loses the focus.
///
/// Thread: user interface. Ownership: the toolkit's cache, until its edit box ends.
class EditBoxAccessible final : public CellEditorAccessible,
                                public QAccessibleTextInterface,
                                public QAccessibleEditableTextInterface {
public:
  explicit EditBoxAccessible(QLineEdit& aEditBox);

  void* interface_cast(QAccessible::InterfaceType aType) override;
  QString text(QAccessible::Text aText) const override;
  void setText(QAccessible::Text aText, const QString& aValue) override;
  QAccessible::State state() const override;

  void selection(int aIndex, int* aStart, int* aEnd) const override;
  int selectionCount() const override;
  void addSelection(int aStart, int aEnd) override;
  void removeSelection(int aIndex) override;
  void setSelection(int aIndex, int aStart, int aEnd) override;
  int cursorPosition() const override;
  void setCursorPosition(int aPosition) override;
  QString text(int aStart, int aEnd) const override;
  int characterCount() const override;
  QRect characterRect(int aOffset) const override;
  int offsetAtPoint(const QPoint& aPoint) const override;
  void scrollToSubstring(int aStart, int aEnd) override;
  QString attributes(int aOffset, int* aStart, int* aEnd) const override;

  void deleteText(int aStart, int aEnd) override;
  void insertText(int aOffset, const QString& aText) override;
  void replaceText(int aStart, int aEnd, const QString& aText) override;

private:
  QLineEdit& GetEditBox() const;
};

} // namespace krgui
