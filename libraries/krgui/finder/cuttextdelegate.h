#pragma once
// Shows the whole text of a cell as a tooltip where the cell is too narrow for it, and selected texts so that they can
// be read.

#include <QStyledItemDelegate>

namespace krgui {

class CutTextDelegate : public QStyledItemDelegate {
public:
  using QStyledItemDelegate::QStyledItemDelegate;

  bool helpEvent(QHelpEvent* aEvent, QAbstractItemView* aView, const QStyleOptionViewItem& aOption,
                 const QModelIndex& aIndex) override;

protected:
  void initStyleOption(QStyleOptionViewItem* aOption, const QModelIndex& aIndex) const override;
};

} // namespace krgui
