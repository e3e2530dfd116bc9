#include "platform/toolbarbutton.h"

#include "platform/cmemdc.h"
#include "platform/focusframe.h"
#include "platform/systemcolours.h"
#include "res/bitmaps.h"

#include <QCursor>
#include <QMouseEvent>
#include <QPainter>

namespace krgui {

namespace {

constexpr int kPictureSide = 16;
constexpr int kMargin = 4;
constexpr std::uint32_t kIsChecked = 1;

} // namespace

ToolBarButton::ToolBarButton(std::uint16_t aBitmapID, std::int32_t aDisabledBitmapID, QWidget* aParent)
    : QAbstractButton(aParent), mBitmapID(aBitmapID), mDisabledBitmapID(aDisabledBitmapID) {
  // All of it is drawn, so nothing is erased first.
  setAttribute(Qt::WA_OpaquePaintEvent);
  setFocusPolicy(Qt::StrongFocus);
}

void ToolBarButton::SetChecked(std::uint32_t aIsChecked) {
  mIsChecked = aIsChecked;
  update();
}

std::uint32_t ToolBarButton::GetChecked() const {
  return mIsChecked;
}

void ToolBarButton::Draw(QPainter& aPainter, const QPoint& aOffset) const {
  const QRect place = rect().translated(aOffset);
  const bool isUnderMouse = place.contains(mapFromGlobal(QCursor::pos()));
  aPainter.fillRect(
      place, GetSystemColour(palette(), isUnderMouse ? SystemColour::GradientActiveCaption : SystemColour::ButtonFace));
  DrawPicture(aPainter, place);
  if (mIsChecked == kIsChecked && isEnabled()) {
    aPainter.setPen(
        QPen(GetSystemColour(palette(), SystemColour::HotLight), 1, Qt::SolidLine, Qt::FlatCap, Qt::MiterJoin));
    aPainter.setBrush(Qt::NoBrush);
    aPainter.drawRect(QRectF(place).adjusted(0.5, 0.5, -0.5, -0.5));
  }
}

void ToolBarButton::DrawPicture(QPainter& aPainter, const QRect& aRect) const {
  const bool isGrey = !isEnabled() && mDisabledBitmapID > 0;
  const BitmapGround ground = IsDarkPalette(palette()) ? BitmapGround::Dark : BitmapGround::Light;
  const QImage bitmap =
      LoadBitmap(isGrey ? mDisabledBitmapID : mBitmapID, aPainter.device()->devicePixelRatioF(), ground);
  const QPoint place(aRect.left() + aRect.width() / 2 - kPictureSide / 2,
                     aRect.top() + aRect.height() / 2 - kPictureSide / 2);
  aPainter.drawImage(place, MakeTransparent(CutBitmap(bitmap, {0, 0, kPictureSide, kPictureSide}), Qt::white));
}

void ToolBarButton::RedrawNow() {
  repaint();
}

QSize ToolBarButton::sizeHint() const {
  return {kPictureSide + 2 * kMargin, kPictureSide + 2 * kMargin};
}

bool ToolBarButton::event(QEvent* aEvent) {
  if (aEvent->type() == QEvent::ToolTipChange && accessibleName().isEmpty())
    setAccessibleName(toolTip());
  const bool isHandled = QAbstractButton::event(aEvent);
  // Styles have every button redrawn under the mouse.
  if (aEvent->type() == QEvent::Polish)
    setAttribute(Qt::WA_Hover, false);
  return isHandled;
}

void ToolBarButton::mouseMoveEvent(QMouseEvent* aEvent) {
  aEvent->accept();
}

void ToolBarButton::focusInEvent(QFocusEvent* aEvent) {
  // A window that becomes active again gives the focus back as it was.
  if (aEvent->reason() != Qt::ActiveWindowFocusReason)
    mIsKeyboardFocus = aEvent->reason() != Qt::MouseFocusReason;
  QAbstractButton::focusInEvent(aEvent);
}

void ToolBarButton::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  CMemDC surface(painter, rect());
  Draw(surface.GetPainter(), {0, 0});
  if (hasFocus() && mIsKeyboardFocus)
    DrawFocusFrame(surface.GetPainter(), rect(), palette());
}

} // namespace krgui
