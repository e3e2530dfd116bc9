#include "display/displayview.h"

#include "display/picturetarget.h"
#include "logic/display/viewcommand.h"
#include "platform/nativechild.h"

#include <QApplication>
#include <QContextMenuEvent>
#include <QFontInfo>
#include <QFontMetricsF>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QWheelEvent>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <utility>

namespace krgui {

namespace {

constexpr std::chrono::milliseconds kRetryInterval{50};

std::int32_t ToDevicePixels(double aLength, double aRatio) {
  return static_cast<std::int32_t>(std::lround(aLength * aRatio));
}

/// A picture in device pixels, whatever the painter's unit is.
void DrawDevicePixels(QWidget& aWidget, QImage aPicture) {
  aPicture.setDevicePixelRatio(aWidget.devicePixelRatioF());
  QPainter(&aWidget).drawImage(QPoint(0, 0), aPicture);
}

} // namespace

DisplayView::DisplayView(std::shared_ptr<DisplayContent> aContent, QWidget* aParent, SurfaceKind aBest)
    : QWidget(aParent), mContent(std::move(aContent)), mBest(aBest), mPainter(mContent->GetStyle()),
      mPaintsOnScreen(CanDrawNatively() && aBest != SurfaceKind::Invalidation) {
  setObjectName(QStringLiteral("display"));
  setAccessibleName(tr("Camera image"));
  setFocusPolicy(Qt::StrongFocus);
  setMouseTracking(true);
  // Every pixel is painted by paintEvent; erasing before would only flicker.
  setAttribute(Qt::WA_OpaquePaintEvent);
  setAttribute(Qt::WA_NoSystemBackground);
  if (mPaintsOnScreen) {
    // Whatever it is embedded in stays as it is.
    setAttribute(Qt::WA_DontCreateNativeAncestors);
    setAttribute(Qt::WA_NativeWindow);
    setAttribute(Qt::WA_PaintOnScreen);
    new NativeChild(*this);
  }
  mRetryTimer.setSingleShot(true);
  mRetryTimer.setInterval(kRetryInterval);
  connect(&mRetryTimer, &QTimer::timeout, this, qOverload<>(&QWidget::update));
}

DisplayView::~DisplayView() {
  Withdraw();
}

void DisplayView::Withdraw() {
  // Only once: the window may have been opened again, with another view.
  if (!std::exchange(mIsWithdrawn, true))
    DropSurface();
}

void DisplayView::DropSurface() {
  if (!mSurface)
    return;
  mContent->SetTarget(nullptr);
  mPainter.SetSurface(nullptr);
  mSurface.reset();
}

void DisplayView::MakeSurface() {
  if (mSurface && mSurface->IsLost())
    DropSurface();
  if (mSurface || mIsWithdrawn || (mPaintsOnScreen && internalWinId() == 0))
    return;
  mSurface = MakeDrawingSurface(*this, mPaintsOnScreen ? mBest : SurfaceKind::Invalidation);
  if (mPaintsOnScreen && mSurface->GetKind() == SurfaceKind::Invalidation) {
    // The screen takes no pixels from us: the toolkit's way is left.
    mPaintsOnScreen = false;
    setAttribute(Qt::WA_PaintOnScreen, false);
    mRetryTimer.start(); // A paint cannot ask for another one.
  }
  mPainter.SetSurface(mSurface.get());
  mContent->SetTarget(&mPainter);
}

QPaintEngine* DisplayView::paintEngine() const {
  return mPaintsOnScreen ? nullptr : QWidget::paintEngine();
}

bool DisplayView::event(QEvent* aEvent) {
  switch (aEvent->type()) {
  case QEvent::WinIdChange:
  case QEvent::ParentChange:
  case QEvent::ScreenChangeInternal:
    // The next paint makes it anew, for the native window as it is then.
    DropSurface();
    update();
    break;
  default:
    break;
  }
  return QWidget::event(aEvent);
}

void DisplayView::changeEvent(QEvent* aEvent) {
  QWidget::changeEvent(aEvent);
  update(); // Colours and fonts may be others.
}

PixelPoint DisplayView::ToDevice(const QPointF& aPoint) const {
  const double ratio = devicePixelRatioF();
  return {static_cast<std::int32_t>(std::floor(aPoint.x() * ratio)),
          static_cast<std::int32_t>(std::floor(aPoint.y() * ratio))};
}

ScreenLook DisplayView::TakeScreenLook() const {
  const double ratio = devicePixelRatioF();
  const QFontInfo info(font());
  return {.pixelRatio = ratio,
          .cornerColor = palette().color(QPalette::Button).rgb() | 0xFF000000U,
          .textFamily = info.family(),
          .textPixelSize = std::max(ToDevicePixels(info.pixelSize(), ratio), 1),
          .textLineHeight = QFontMetricsF(QGuiApplication::font()).height() * ratio};
}

void DisplayView::UpdateClient() {
  const double ratio = devicePixelRatioF();
  mContent->ChangeView([&](ViewGeometry& aView) {
    aView.SetClient(ToDevicePixels(width(), ratio), ToDevicePixels(height(), ratio),
                    ToDevicePixels(ViewGeometry::kBarThickness, ratio));
  });
}

void DisplayView::paintEvent(QPaintEvent*) {
  if (mIsWithdrawn)
    return; // The content may have another view by now.
  const bool paintedOnScreen = mPaintsOnScreen;
  // Not before: now the server has the native window for certain.
  MakeSurface();
  if (paintedOnScreen != mPaintsOnScreen)
    return; // The toolkit's way begins with the paint that was asked for.
  const ScreenLook screen = TakeScreenLook();
  mContent->ChangeView([&](ViewGeometry&) { mPainter.SetScreen(screen); });
  const double ratio = screen.pixelRatio;
  const DisplayContent::Painted painted =
      mContent->PaintWindow(ToDevicePixels(width(), ratio), ToDevicePixels(height(), ratio),
                            ToDevicePixels(ViewGeometry::kBarThickness, ratio));
  const QImage picture = mPainter.TakePicture();
  if (painted.outcome == FrameTarget::Outcome::Dropped)
    mRetryTimer.start();
  if (!picture.isNull())
    DrawDevicePixels(*this, picture);
  else if (QPoint offset; redirected(&offset) != nullptr || sharedPainter() != nullptr)
    PaintRedirected(screen);
  Q_EMIT BarsFound(painted.bars);
}

/// A picture of the window is wanted, which what is on the screen is not in.
void DisplayView::PaintRedirected(const ScreenLook& aScreen) {
  PictureTarget target(mContent->GetStyle(), aScreen);
  mContent->PaintTo(target);
  if (!target.GetPicture().isNull())
    DrawDevicePixels(*this, target.GetPicture());
}

void DisplayView::Zoom(double aStep, int aCount) {
  if (aCount == 0)
    return;
  mContent->ChangeView([&](ViewGeometry& aView) { ZoomBySteps(aView, aStep, aCount); });
  update();
}

void DisplayView::keyPressEvent(QKeyEvent* aEvent) {
  // With Alt or Meta keys are the window manager's and the menus'.
  const bool isCommand = (aEvent->modifiers() & (Qt::AltModifier | Qt::MetaModifier)) != 0;
  if (!isCommand && aEvent->key() == Qt::Key_Plus)
    Zoom(kKeyZoomStep, 1);
  else if (!isCommand && aEvent->key() == Qt::Key_Minus)
    Zoom(kKeyZoomStep, -1);
  if (aEvent->key() == Qt::Key_F10 && aEvent->modifiers() == Qt::ShiftModifier)
    Q_EMIT MenuWanted(mapToGlobal(rect().center())); // The menu key itself is the toolkit's to turn into an event.
  else
    QWidget::keyPressEvent(aEvent); // Whatever it was, the surrounding dialog gets it too.
}

void DisplayView::wheelEvent(QWheelEvent* aEvent) {
  Zoom(kWheelZoomStep, mWheelSteps.Add(aEvent->angleDelta().y()));
  aEvent->accept();
}

void DisplayView::mousePressEvent(QMouseEvent* aEvent) {
  if (aEvent->button() == Qt::RightButton)
    mContextPoint = ToDevice(aEvent->position());
  setFocus(Qt::MouseFocusReason);
}

void DisplayView::mouseMoveEvent(QMouseEvent* aEvent) {
  TrackCursor(ToDevice(aEvent->position()));
}

void DisplayView::leaveEvent(QEvent* aEvent) {
  QWidget::leaveEvent(aEvent);
  TrackCursor({});
}

void DisplayView::TrackCursor(const std::optional<PixelPoint>& aClientPoint) {
  mContent->SetCursor(aClientPoint);
  if (mContent->IsCursorLineEnabled())
    update();
}

void DisplayView::contextMenuEvent(QContextMenuEvent* aEvent) {
  const bool isByKeyboard = aEvent->reason() == QContextMenuEvent::Keyboard;
  Q_EMIT MenuWanted(isByKeyboard ? mapToGlobal(rect().center()) : aEvent->globalPos());
}

} // namespace krgui
