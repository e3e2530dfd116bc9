#include "platform/elidedlabel.h"

#include "platform/plainline.h"
#include "platform/systemcolours.h"

#include <QHelpEvent>
#include <QPaintEvent>
#include <QPainter>
#include <QStyle>
#include <QToolTip>

namespace krgui {

namespace {

/// How much of the text's colour a disabled one has.
constexpr int kDisabledPercent = 55;

} // namespace

ElidedLabel::ElidedLabel(QWidget* aParent) : QLabel(aParent) {
  setTextFormat(Qt::PlainText);
  setAlignment(Qt::AlignLeft | Qt::AlignVCenter);
}

QSize ElidedLabel::minimumSizeHint() const {
  return {0, QLabel::minimumSizeHint().height()};
}

int ElidedLabel::GetTextFlags() const {
  return buddy() != nullptr ? Qt::TextShowMnemonic : 0;
}

QString ElidedLabel::GetShownText() const {
  return fontMetrics().elidedText(text(), Qt::ElideRight, contentsRect().width(), GetTextFlags());
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
  const QPalette colours = palette();
  const QColor text = colours.color(QPalette::Active, QPalette::WindowText);
  painter.setPen(isEnabled() ? text
                             : BlendColours(text, colours.color(QPalette::Active, QPalette::Window), kDisabledPercent));
  painter.drawText(contentsRect(), static_cast<int>(alignment()) | Qt::TextSingleLine | GetTextFlags(), GetShownText());
}

} // namespace krgui
