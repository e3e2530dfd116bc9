#pragma once
// The up-down control in a cell of the property grid as assistive technology reads it: the number in the edit box
// beside it, and its limits.

#include "browser/celleditoraccessible.h"

#include <cstdint>

namespace krgui {

class TreeItemData;
class UpDownControl;
struct IntegerRange;

/// Limits and increment are read when they are asked for, as the arrows do: that may wait for the device.
///
/// Thread: user interface. Ownership: the toolkit's cache, until its control ends.
class UpDownAccessible final : public CellEditorAccessible, public QAccessibleValueInterface {
public:
  explicit UpDownAccessible(UpDownControl& aUpDown);

  void* interface_cast(QAccessible::InterfaceType aType) override;
  QString text(QAccessible::Text aText) const override;
  QStringList actionNames() const override;
  void doAction(const QString& aName) override;

  /// Invalid while the edit box holds no number.
  QVariant currentValue() const override;
  /// Counts as typed into the edit box, within the limits.
  void setCurrentValue(const QVariant& aValue) override;
  QVariant minimumValue() const override;
  QVariant maximumValue() const override;
  QVariant minimumStepSize() const override;

private:
  const TreeItemData* FindNode() const;
  QVariant ReadLimit(std::int64_t IntegerRange::*aLimit) const;
  /// Of the edit box that has the focus in the control's stead; null for none.
  QAccessibleInterface* FindEditBox() const;
};

} // namespace krgui
