#include "finder/cuttextdelegate.h"

#include "platform/contrast.h"
#include "platform/plainline.h"

#include <QAbstractItemView>
#include <QHelpEvent>
#include <QToolTip>

namespace krgui {

bool CutTextDelegate::helpEvent(QHelpEvent* aEvent, QAbstractItemView* aView, const QStyleOptionViewItem& aOption,
                                const QModelIndex& aIndex) {
  if (aEvent->type() != QEvent::ToolTip || !aView)
    return QStyledItemDelegate::helpEvent(aEvent, aView, aOption, aIndex);
  // What is scrolled out of sight is cut too.
  const QRect cell = aView->visualRect(aIndex);
  const bool isCut = sizeHint(aOption, aIndex).width() > cell.intersected(aView->viewport()->rect()).width();
  const QString text = aIndex.data(Qt::DisplayRole).toString();
  if (isCut && !text.isEmpty())
    QToolTip::showText(aEvent->globalPos(), ToPlainToolTip(text), aView->viewport(), cell);
  else
    QToolTip::hideText();
  return true;
}

void CutTextDelegate::initStyleOption(QStyleOptionViewItem* aOption, const QModelIndex& aIndex) const {
  QStyledItemDelegate::initStyleOption(aOption, aIndex);
  MakeSelectionsReadable(aOption->palette);
}

} // namespace krgui
