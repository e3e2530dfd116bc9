#include "platform/elidedlabel.h"

#include "platform/plainline.h"

#include <QHelpEvent>
#include <QPaintEvent>
#include <QPainter>
#include <QStyle>
#include <QToolTip>

namespace krgui {

ElidedLabel::ElidedLabel(QWidget* aParent) : QLabel(aParent) {
  setTextFormat(Qt::PlainText);
  setAlignment(Qt::AlignLeft | Qt::AlignVCenter);
}

QSize ElidedLabel::minimumSizeHint() const {
  return {0, QLabel::minimumSizeHint().height()};
}

QString ElidedLabel::GetShownText() const {
  return fontMetrics().elidedText(text(), Qt::ElideRight, contentsRect().width());
}

bool ElidedLabel::event(QEvent* aEvent) {
  if (aEvent->type() != QEvent::ToolTip || !toolTip().isEmpty())
    return QLabel::event(aEvent);
  const bool isWhole = GetShownText() == text();
  QToolTip::showText(static_cast<QHelpEvent*>(aEvent)->globalPos(), isWhole ? QString() : ToPlainToolTip(text()), this);
  return true;
}

void ElidedLabel::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  style()->drawItemText(&painter, contentsRect(), static_cast<int>(alignment()), palette(), isEnabled(), GetShownText(),
                        foregroundRole());
}

} // namespace krgui
