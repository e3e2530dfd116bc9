#include "browser/updowncontrol.h"

#include <QPainter>
#include <QPainterPath>
#include <QStyle>
#include <QToolButton>

#include <algorithm>

namespace krgui {

namespace {

constexpr int kLeastWidth = 15;
constexpr int kHoverPercent = 108;
constexpr int kPressedPercent = 120;

/// As wide as high a row is, within reason.
constexpr double kArrowShare = 0.42;
constexpr double kLeastArrow = 5;
constexpr double kLargestArrow = 10;

/// Half of the control. The style's own spin buttons are made for a frame around them, which a cell has not.
class ArrowButton final : public QToolButton {
public:
  ArrowButton(QWidget* aParent, bool aIsUp) : QToolButton(aParent), mIsUp(aIsUp) {}

protected:
  void paintEvent(QPaintEvent*) override {
    QPainter painter(this);
    painter.fillRect(rect(), GetBackground());
    const QColor line = palette().color(QPalette::Mid);
    painter.fillRect(isRightToLeft() ? width() - 1 : 0, 0, 1, height(), line);
    if (!mIsUp) {
      painter.fillRect(0, 0, width(), 1, line);
    }
    painter.setRenderHint(QPainter::Antialiasing);
    painter.fillPath(GetArrow(), palette().color(QPalette::ButtonText));
  }

private:
  QColor GetBackground() const {
    const QColor button = palette().color(QPalette::Button);
    if (isDown()) {
      return button.darker(kPressedPercent);
    }
    return underMouse() ? button.lighter(kHoverPercent) : button;
  }

  QPainterPath GetArrow() const {
    const double across = std::clamp(width() * kArrowShare, kLeastArrow, kLargestArrow);
    const double high = across / 2;
    const QPointF center = QRectF(rect()).center();
    const double tip = center.y() + (mIsUp ? -high : high) / 2;
    const double base = center.y() + (mIsUp ? high : -high) / 2;
    QPainterPath arrow(QPointF(center.x(), tip));
    arrow.lineTo(center.x() - across / 2, base);
    arrow.lineTo(center.x() + across / 2, base);
    arrow.closeSubpath();
    return arrow;
  }

  const bool mIsUp;
};

} // namespace

UpDownControl::UpDownControl(QWidget* aParent) : QWidget(aParent), mUp(MakeButton(true)), mDown(MakeButton(false)) {
  setFocusPolicy(Qt::ClickFocus);
  setCursor(Qt::ArrowCursor);
}

void UpDownControl::SetFeatureName(const QString& aName) {
  setAccessibleName(aName);
  mUp->setAccessibleName(QStringLiteral("Increase ") + aName);
  mDown->setAccessibleName(QStringLiteral("Decrease ") + aName);
}

int UpDownControl::GetPreferredWidth(const QWidget& aBeside) {
  return std::max(kLeastWidth, aBeside.fontMetrics().height());
}

void UpDownControl::resizeEvent(QResizeEvent*) {
  const int upper = height() / 2;
  mUp->setGeometry(0, 0, width(), upper);
  mDown->setGeometry(0, upper, width(), height() - upper);
}

QToolButton* UpDownControl::MakeButton(bool aIsUp) {
  auto* button = new ArrowButton(this, aIsUp);
  button->setObjectName(aIsUp ? QStringLiteral("up") : QStringLiteral("down"));
  button->setFocusPolicy(Qt::NoFocus);
  button->setAutoRepeat(true);
  button->setAutoRepeatDelay(style()->styleHint(QStyle::SH_SpinBox_ClickAutoRepeatThreshold, nullptr, this));
  button->setAutoRepeatInterval(style()->styleHint(QStyle::SH_SpinBox_ClickAutoRepeatRate, nullptr, this));
  // A button that repeats is pressed anew each time; let go it is only when it is not down any more.
  connect(button, &QToolButton::pressed, this, [this, aIsUp] { Q_EMIT Stepped(aIsUp); });
  connect(button, &QToolButton::released, this, [this, button] {
    if (!button->isDown()) {
      Q_EMIT Released();
    }
  });
  return button;
}

} // namespace krgui
