#include "display/displaybars.h"

#include "platform/drawingsurface.h"
#include "platform/nativechild.h"

#include <QKeyEvent>
#include <QScrollBar>
#include <QSignalBlocker>

#include <algorithm>
#include <cmath>
#include <iterator>
#include <utility>

namespace krgui {

namespace {

struct ActionEntry {
  QAbstractSlider::SliderAction action;
  ScrollCode code;
};

constexpr ActionEntry kActions[] = {
    {QAbstractSlider::SliderSingleStepSub, ScrollCode::LineLess},
    {QAbstractSlider::SliderSingleStepAdd, ScrollCode::LineMore},
    {QAbstractSlider::SliderPageStepSub, ScrollCode::PageLess},
    {QAbstractSlider::SliderPageStepAdd, ScrollCode::PageMore},
    {QAbstractSlider::SliderMove, ScrollCode::ThumbTrack},
    {QAbstractSlider::SliderToMinimum, ScrollCode::Least},
    {QAbstractSlider::SliderToMaximum, ScrollCode::Most},
};

/// Lets the arrow keys of a horizontal bar go the way they point: the toolkit's go by the direction in which values of
/// vertical bars grow.
class ArrowKeys : public QObject {
public:
  explicit ArrowKeys(QScrollBar& aBar) : QObject(&aBar), mBar(aBar) { aBar.installEventFilter(this); }

protected:
  bool eventFilter(QObject*, QEvent* aEvent) override {
    if (aEvent->type() != QEvent::KeyPress || mBar.orientation() != Qt::Horizontal)
      return false;
    const int key = static_cast<QKeyEvent*>(aEvent)->key();
    if (key == Qt::Key_Left)
      mBar.triggerAction(QAbstractSlider::SliderSingleStepSub);
    else if (key == Qt::Key_Right)
      mBar.triggerAction(QAbstractSlider::SliderSingleStepAdd);
    return key == Qt::Key_Left || key == Qt::Key_Right;
  }

private:
  QScrollBar& mBar;
};

/// By its edges, so that bars stay side by side whatever the ratio is.
QRect ToWidgetRect(const PixelRect& aDeviceRect, double aPixelRatio) {
  const auto convert = [aPixelRatio](std::int32_t aEdge) { return static_cast<int>(std::lround(aEdge / aPixelRatio)); };
  const QPoint topLeft(convert(aDeviceRect.left), convert(aDeviceRect.top));
  return {topLeft, QSize(convert(aDeviceRect.right) - topLeft.x(), convert(aDeviceRect.bottom) - topLeft.y())};
}

} // namespace

DisplayBars::DisplayBars(std::shared_ptr<DisplayContent> aContent, QScrollBar* aHorizontal, QScrollBar* aVertical,
                         std::function<void()> aOnScroll)
    : mContent(std::move(aContent)), mOnScroll(std::move(aOnScroll)), mSides{Side(ViewAxis::Horizontal, aHorizontal),
                                                                             Side(ViewAxis::Vertical, aVertical)} {
  for (Side& side : mSides)
    if (side.bar)
      Watch(side);
}

void DisplayBars::Watch(Side& aSide) {
  // Without the native ancestors that a native window has otherwise: the display may be embedded.
  aSide.bar->setAttribute(Qt::WA_DontCreateNativeAncestors);
  if (CanDrawNatively()) {
    aSide.bar->setAttribute(Qt::WA_NativeWindow);
    new NativeChild(*aSide.bar);
  }
  // The left end is the image's left edge in every language.
  aSide.bar->setLayoutDirection(Qt::LeftToRight);
  new ArrowKeys(*aSide.bar);
  // For those who have no mouse; a click leaves the focus with the view.
  aSide.bar->setFocusPolicy(Qt::TabFocus);
  // Its own menu would move the bar without the view.
  aSide.bar->setContextMenuPolicy(Qt::PreventContextMenu);
  QObject::connect(aSide.bar, &QScrollBar::actionTriggered, &mConnections,
                   [this, axis = aSide.axis](int aAction) { OnAction(axis, aAction); });
}

void DisplayBars::OnAction(ViewAxis aAxis, int aAction) {
  const auto* entry = std::find_if(std::begin(kActions), std::end(kActions),
                                   [aAction](const ActionEntry& aEntry) { return aEntry.action == aAction; });
  if (entry == std::end(kActions))
    return;
  Side& side = GetSide(aAxis);
  const int thumb = side.bar->sliderPosition();
  const int position = mContent->ChangeView([&](ViewGeometry& aView) {
    aView.Scroll(aAxis, entry->code, thumb);
    return aView.GetBar(aAxis).GetPosition();
  });
  // The bar takes over its slider's position as its value when this returns.
  const QSignalBlocker blocker(side.bar);
  side.bar->setSliderPosition(position);
  mOnScroll();
}

void DisplayBars::Keep(const BarChanges& aChanges) {
  const BarChange* changes[] = {&aChanges.horizontal, &aChanges.vertical};
  for (std::size_t i = 0; i < std::size(mSides); ++i) {
    if (changes[i]->kind == BarChange::Kind::None)
      continue;
    mSides[i].kind = changes[i]->kind;
    mSides[i].wanted = changes[i]->rect;
  }
}

void DisplayBars::Place(double aPixelRatio) {
  for (Side& side : mSides) {
    if (!side.bar || side.kind != BarChange::Kind::Place)
      continue;
    side.placed = ToWidgetRect(side.wanted, aPixelRatio);
    Refresh(side);
    side.bar->setGeometry(side.placed);
    side.bar->raise();
    side.bar->show();
  }
}

void DisplayBars::Restore() {
  for (const Side& side : mSides)
    if (side.bar && !side.placed.isNull())
      side.bar->setGeometry(side.placed);
}

void DisplayBars::SetVisible(ViewAxis aAxis, bool aIsVisible) {
  if (const Side& side = GetSide(aAxis); side.bar)
    side.bar->setVisible(aIsVisible);
}

void DisplayBars::Refresh() {
  for (Side& side : mSides)
    if (side.bar)
      Refresh(side);
}

/// The toolkit's greatest value leaves the page out, the model's does not.
void DisplayBars::Refresh(Side& aSide) {
  const ScrollBarModel model = mContent->ChangeView([&](ViewGeometry& aView) { return aView.GetBar(aSide.axis); });
  const QSignalBlocker blocker(aSide.bar);
  aSide.bar->setRange(model.GetMinimum(), model.GetMaximum() - model.GetPage());
  aSide.bar->setPageStep(model.GetPage());
  aSide.bar->setValue(model.GetPosition());
}

WId DisplayBars::GetHandle(ViewAxis aAxis) const {
  const Side& side = GetSide(aAxis);
  return side.bar ? side.bar->winId() : 0;
}

} // namespace krgui
