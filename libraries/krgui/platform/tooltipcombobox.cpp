#include "platform/tooltipcombobox.h"

#include "platform/ctooltiplistctrl.h"

#include <QFontMetrics>

#include <algorithm>

namespace krgui {

TooltipComboBox::TooltipComboBox(QWidget* aParent) : QComboBox(aParent), mList(new CTooltipListCtrl) {
  mList->Init(*this);
}

void TooltipComboBox::showPopup() {
  if (count() == 0 || mList->isVisible()) {
    return;
  }
  const QRect place(mapToGlobal(QPoint()), size());
  const QRect offered(place.topLeft(), QSize(place.width(), maxVisibleItems() * std::max(mList->PrepareItems(), 1)));
  mList->ShowDropDown(offered, place);
}

/// The list closes by itself; the toolkit also asks for it, when the combo box goes away.
void TooltipComboBox::hidePopup() {
  mList->hide();
}

} // namespace krgui
