#include "display/displayview.h"

#include <QPainter>

#include <cmath>

namespace krgui {

DisplayView::DisplayView(std::shared_ptr<DisplayContent> aContent, QWidget* aParent)
    : QWidget(aParent), mContent(std::move(aContent)) {
  setObjectName(QStringLiteral("display"));
  setAccessibleName(tr("Camera image"));
  setFocusPolicy(Qt::StrongFocus);
  // Every pixel is painted by paintEvent; erasing before would only flicker.
  setAttribute(Qt::WA_OpaquePaintEvent);
  setAttribute(Qt::WA_NoSystemBackground);
}

DisplayView::~DisplayView() = default;

void DisplayView::paintEvent(QPaintEvent*) {
  const double ratio = devicePixelRatioF();
  mPainter.Prepare(mContent->GetStyle(), ratio);
  QPainter painter(this);
  painter.scale(1.0 / ratio, 1.0 / ratio);
  mContent->Paint(static_cast<int>(std::lround(width() * ratio)), static_cast<int>(std::lround(height() * ratio)),
                  [&](const DisplayContent::Frame& aFrame) { mPainter.Draw(painter, aFrame); });
}

void DisplayView::resizeEvent(QResizeEvent* aEvent) {
  QWidget::resizeEvent(aEvent);
  mContent->MarkViewDirty();
}

} // namespace krgui
