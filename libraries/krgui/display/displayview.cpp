#include "display/displayview.h"

#include "display/displaypainter.h"
#include "display/overlayfont.h"

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

const QFont& DisplayView::GetOverlayFont(int aSize, double aPixelRatio) {
  if (aSize != mFontSize || aPixelRatio != mFontPixelRatio) {
    mOverlayFont = MakeOverlayFont(aSize, aPixelRatio);
    mFontSize = aSize;
    mFontPixelRatio = aPixelRatio;
  }
  return mOverlayFont;
}

void DisplayView::paintEvent(QPaintEvent*) {
  const double ratio = devicePixelRatioF();
  const DisplayStyle& style = mContent->GetStyle();
  const OverlayStyle overlay = {GetOverlayFont(style.overlaySize, ratio), style.overlayColor,
                                style.overlayOffsetX * ratio, style.overlayOffsetY * ratio};
  QPainter painter(this);
  painter.scale(1.0 / ratio, 1.0 / ratio);
  mContent->Paint(static_cast<int>(std::lround(width() * ratio)), static_cast<int>(std::lround(height() * ratio)),
                  [&](const DisplayContent::Frame& aFrame) {
                    DrawFrame(painter, aFrame, style.backgroundColor, overlay);
                  });
}

void DisplayView::resizeEvent(QResizeEvent* aEvent) {
  QWidget::resizeEvent(aEvent);
  mContent->MarkViewDirty();
}

} // namespace krgui
