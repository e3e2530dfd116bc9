#include "browser/updownaccessible.h"

#include "browser/propertiesgrid.h"
#include "browser/updowncontrol.h"
#include "logic/browser/featureediting.h"
#include "platform/toqstring.h"

#include <QAbstractButton>

#include <algorithm>

namespace krgui {

UpDownAccessible::UpDownAccessible(UpDownControl& aUpDown) : CellEditorAccessible(aUpDown, QAccessible::SpinBox) {}

void* UpDownAccessible::interface_cast(QAccessible::InterfaceType aType) {
  if (aType == QAccessible::ValueInterface)
    return static_cast<QAccessibleValueInterface*>(this);
  return CellEditorAccessible::interface_cast(aType);
}

const TreeItemData* UpDownAccessible::FindNode() const {
  const PropertiesGrid* grid = FindGrid();
  return grid != nullptr ? grid->GetTree().FindFeature(grid->GetEdited()) : nullptr;
}

QAccessibleInterface* UpDownAccessible::FindEditBox() const {
  return widget()->focusProxy() != nullptr ? QAccessible::queryAccessibleInterface(widget()->focusProxy()) : nullptr;
}

QString UpDownAccessible::text(QAccessible::Text aText) const {
  const QAccessibleInterface* editBox = aText == QAccessible::Value ? FindEditBox() : nullptr;
  return editBox != nullptr ? editBox->text(aText) : CellEditorAccessible::text(aText);
}

QStringList UpDownAccessible::actionNames() const {
  return {increaseAction(), decreaseAction()};
}

void UpDownAccessible::doAction(const QString& aName) {
  const QString part = aName == increaseAction() ? QStringLiteral("up") : QStringLiteral("down");
  auto* arrow = widget()->findChild<QAbstractButton*>(part);
  if (arrow != nullptr && actionNames().contains(aName))
    arrow->click();
}

QVariant UpDownAccessible::currentValue() const {
  const TreeItemData* node = FindNode();
  const auto value = node != nullptr ? ParseEdited(*node, ToKrString(text(QAccessible::Value))) : std::nullopt;
  return value ? QVariant(static_cast<qlonglong>(*value)) : QVariant();
}

void UpDownAccessible::setCurrentValue(const QVariant& aValue) {
  bool isNumber = false;
  const std::int64_t wanted = aValue.toLongLong(&isNumber);
  const TreeItemData* node = isNumber ? FindNode() : nullptr;
  QAccessibleInterface* editBox = FindEditBox();
  const auto range = node != nullptr ? ReadStepRange(*node) : std::nullopt;
  if (!range || range->min > range->max || editBox == nullptr)
    return;
  if (const auto text = FormatEdited(*node, std::clamp(wanted, range->min, range->max)))
    editBox->setText(QAccessible::Value, ToQString(*text));
}

QVariant UpDownAccessible::ReadLimit(std::int64_t IntegerRange::*aLimit) const {
  const TreeItemData* node = FindNode();
  const auto range = node != nullptr ? ReadStepRange(*node) : std::nullopt;
  return range ? QVariant(static_cast<qlonglong>((*range).*aLimit)) : QVariant();
}

QVariant UpDownAccessible::minimumValue() const {
  return ReadLimit(&IntegerRange::min);
}

QVariant UpDownAccessible::maximumValue() const {
  return ReadLimit(&IntegerRange::max);
}

QVariant UpDownAccessible::minimumStepSize() const {
  return ReadLimit(&IntegerRange::increment);
}

} // namespace krgui
