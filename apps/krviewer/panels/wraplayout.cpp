#include "panels/wraplayout.h"

#include <QWidget>

#include <algorithm>

namespace krviewer {

WrapLayout::WrapLayout(QWidget* aParent) : QLayout(aParent) {
  setContentsMargins(0, 0, 0, 0);
}

WrapLayout::~WrapLayout() {
  qDeleteAll(mItems);
}

QLayoutItem* WrapLayout::takeAt(int aIndex) {
  return aIndex >= 0 && aIndex < mItems.size() ? mItems.takeAt(aIndex) : nullptr;
}

QSize WrapLayout::sizeHint() const {
  QSize size;
  for (const QLayoutItem* item : mItems) {
    const QSize hint = item->sizeHint();
    size = {size.width() + hint.width() + (size.isEmpty() ? 0 : spacing()), std::max(size.height(), hint.height())};
  }
  return size;
}

QSize WrapLayout::minimumSize() const {
  QSize size;
  for (const QLayoutItem* item : mItems)
    size = size.expandedTo(item->minimumSize());
  return size;
}

void WrapLayout::setGeometry(const QRect& aRect) {
  QLayout::setGeometry(aRect);
  Arrange(aRect, Doing::Place);
}

int WrapLayout::Arrange(const QRect& aRect, Doing aDoing) const {
  int x = aRect.left();
  int top = aRect.top();
  int rowHeight = 0;
  for (QLayoutItem* item : mItems) {
    if (item->isEmpty())
      continue;
    QSize size = item->sizeHint();
    size.setWidth(std::min(size.width(), std::max(aRect.width(), item->minimumSize().width())));
    if (x > aRect.left() && x + size.width() > aRect.left() + aRect.width()) {
      x = aRect.left();
      top += rowHeight + spacing();
      rowHeight = 0;
    }
    if (aDoing == Doing::Place)
      item->setGeometry(QRect(QPoint(x, top), size));
    x += size.width() + spacing();
    rowHeight = std::max(rowHeight, size.height());
  }
  return top + rowHeight - aRect.top();
}

} // namespace krviewer
