#include "display/displayview.h"

#include "display/picturetarget.h"
#include "logic/display/viewcommand.h"
#include "platform/nativechild.h"
#include "platform/systemcolours.h"
#include "platform/x11connection.h"

#include <QApplication>
#include <QContextMenuEvent>
#include <QCursor>
#include <QEnterEvent>
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

/// Between attempts to get pixels to a screen that took none.
constexpr std::chrono::milliseconds kScreenInterval{3000};

std::int32_t ToDevicePixels(double aLength, double aRatio) {
  return static_cast<std::int32_t>(std::lround(aLength * aRatio));
}

bool IsWhole(double aRatio) {
  return aRatio == std::floor(aRatio);
}

/// A picture in device pixels, whatever the painter's unit is. Its own ratio is not set: that would copy the pixels,
/// which the surface has too.
void DrawDevicePixels(QPainter& aPainter, const QImage& aPicture, double aRatio) {
  aPainter.scale(1 / aRatio, 1 / aRatio);
  aPainter.drawImage(QPoint(0, 0), aPicture);
}

} // namespace

DisplayView::DisplayView(std::shared_ptr<DisplayContent> aContent, QWidget* aParent, SurfaceKind aBest,
                         SurfaceMaker aMaker)
    : QWidget(aParent), mContent(std::move(aContent)), mBest(aBest), mMakeSurface(std::move(aMaker)),
      mMayPaintOnScreen(CanDrawNatively() && aBest != SurfaceKind::Invalidation), mPainter(mContent->GetStyle()),
      mPaintsOnScreen(mMayPaintOnScreen) {
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
  mScreenTimer.setSingleShot(true);
  connect(&mScreenTimer, &QTimer::timeout, this, &DisplayView::ReturnToScreen);
}

DisplayView::~DisplayView() {
  Withdraw();
}

void DisplayView::Withdraw() {
  // Only once: the window may have been opened again, with another view.
  if (std::exchange(mIsWithdrawn, true))
    return;
  mRetryTimer.stop();
  mScreenTimer.stop();
  mContent->SetCursor({});
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
  auto surface = mMakeSurface(*this, mPaintsOnScreen ? mBest : SurfaceKind::Invalidation);
  if (mPaintsOnScreen && surface->GetKind() == SurfaceKind::Invalidation) {
    // The screen takes no pixels from us now: the toolkit's way is left.
    SetPaintsOnScreen(false);
    mRetryTimer.start(); // A paint cannot ask for another one.
    mScreenTimer.start(kScreenInterval);
  }
  UseSurface(std::move(surface));
}

void DisplayView::UseSurface(std::unique_ptr<DrawingSurface> aSurface) {
  mSurface = std::move(aSurface);
  mPainter.SetSurface(mSurface.get());
  mContent->SetTarget(&mPainter);
}

void DisplayView::SetPaintsOnScreen(bool aPaintsOnScreen) {
  mPaintsOnScreen = aPaintsOnScreen;
  setAttribute(Qt::WA_PaintOnScreen, aPaintsOnScreen);
}

/// Leaves the toolkit's way as soon as the screen takes pixels from us again.
void DisplayView::ReturnToScreen() {
  if (mIsWithdrawn || mPaintsOnScreen || internalWinId() == 0)
    return; // A native window that is made later says so.
  auto surface = mMakeSurface(*this, mBest);
  if (surface->GetKind() == SurfaceKind::Invalidation) {
    mScreenTimer.start(kScreenInterval);
    return;
  }
  DropSurface();
  SetPaintsOnScreen(true);
  UseSurface(std::move(surface));
  update();
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
    if (mMayPaintOnScreen && !mPaintsOnScreen && !mIsWithdrawn)
      mScreenTimer.start(0);
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
          .cornerColor = GetSystemColour(palette(), SystemColour::ButtonFace).rgb() | 0xFF000000U,
          .textFamily = info.family(),
          .textPixelSize = std::max(ToDevicePixels(info.pixelSize(), ratio), 1),
          .textLineHeight = QFontMetricsF(QGuiApplication::font()).height() * ratio};
}

/// Where a pixel of the widget is not a whole number of device pixels, the toolkit rounds each native window by its
/// place: the view's may be larger or smaller than reckoned, and a pixel longer than the window around it.
QSize DisplayView::FindDeviceSize() const {
  const double ratio = devicePixelRatioF();
  const QSize reckoned(ToDevicePixels(width(), ratio), ToDevicePixels(height(), ratio));
  const QWidget* parent = nativeParentWidget();
  if (!mPaintsOnScreen || internalWinId() == 0 || IsWhole(ratio) || parent == nullptr)
    return reckoned;
  const std::optional<QRect> own = FindX11WindowRect(internalWinId());
  const std::optional<QRect> around = FindX11WindowRect(parent->internalWinId());
  if (!own || !around)
    return reckoned;
  const auto cut = [](int aLength, int aRoom) { return aLength - aRoom == 1 ? aRoom : aLength; };
  return {cut(own->width(), around->width() - own->x()), cut(own->height(), around->height() - own->y())};
}

void DisplayView::UpdateClient() {
  const QSize client = FindDeviceSize();
  const std::int32_t barThickness = ToDevicePixels(ViewGeometry::kBarThickness, devicePixelRatioF());
  mContent->ChangeView([&](ViewGeometry& aView) { aView.SetClient(client.width(), client.height(), barThickness); });
}

void DisplayView::paintEvent(QPaintEvent*) {
  if (mIsWithdrawn)
    return; // The content may have another view by now.
  const bool paintedOnScreen = mPaintsOnScreen;
  // Not before: now the server has the native window for certain.
  MakeSurface();
  if (paintedOnScreen != mPaintsOnScreen)
    return; // The toolkit's way begins with the paint that was asked for.
  // A window that opens under the cursor may never be told of it.
  if (!std::exchange(mHasPainted, true))
    mContent->SetCursor(FindCursor());
  const ScreenLook screen = TakeScreenLook();
  mContent->ChangeView([&](ViewGeometry&) { mPainter.SetScreen(screen); });
  const double ratio = screen.pixelRatio;
  const QSize client = FindDeviceSize();
  const DisplayContent::Painted painted =
      mContent->PaintWindow(client.width(), client.height(), ToDevicePixels(ViewGeometry::kBarThickness, ratio));
  const QImage picture = mPainter.TakePicture();
  if (painted.outcome == FrameTarget::Outcome::Dropped)
    mRetryTimer.start();
  if (QPainter painter; !picture.isNull() && painter.begin(this))
    DrawDevicePixels(painter, picture, ratio);
  else if (QPoint offset; redirected(&offset) != nullptr || sharedPainter() != nullptr)
    PaintRedirected(screen);
  Q_EMIT BarsFound(painted.bars);
}

/// A picture of the window is wanted, which what is on the screen is not in.
void DisplayView::PaintRedirected(const ScreenLook& aScreen) {
  PictureTarget target(mContent->GetStyle(), aScreen);
  mContent->PaintTo(target);
  QPainter painter(this);
  // A native window may be smaller by a fraction of a pixel.
  painter.fillRect(rect(), QColor(ToPixel(mContent->GetStyle().backgroundColor)));
  DrawDevicePixels(painter, target.GetPicture(), aScreen.pixelRatio);
}

void DisplayView::Zoom(double aStep, int aCount) {
  if (aCount == 0 || mIsWithdrawn)
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

void DisplayView::TakeWheelOf(QWidget& aWidget) {
  aWidget.installEventFilter(this);
}

bool DisplayView::eventFilter(QObject* aWatched, QEvent* aEvent) {
  if (aEvent->type() != QEvent::Wheel)
    return QWidget::eventFilter(aWatched, aEvent);
  wheelEvent(static_cast<QWheelEvent*>(aEvent));
  return true;
}

void DisplayView::wheelEvent(QWheelEvent* aEvent) {
  Zoom(kWheelZoomStep, mWheelSteps.Add(aEvent->angleDelta().y()));
  aEvent->accept();
}

void DisplayView::mousePressEvent(QMouseEvent* aEvent) {
  if (aEvent->button() == Qt::RightButton)
    Q_EMIT ContextPointSet(ToDevice(aEvent->position()));
  setFocus(Qt::MouseFocusReason);
}

void DisplayView::mouseMoveEvent(QMouseEvent* aEvent) {
  TrackCursor(ToDevice(aEvent->position()));
}

void DisplayView::enterEvent(QEnterEvent* aEvent) {
  QWidget::enterEvent(aEvent);
  TrackCursor(ToDevice(aEvent->position()));
}

void DisplayView::leaveEvent(QEvent* aEvent) {
  QWidget::leaveEvent(aEvent);
  TrackCursor({});
}

/// Where the mouse is by the window system's word; nothing where something else is above the view.
std::optional<PixelPoint> DisplayView::FindCursor() const {
  const QPoint point = QCursor::pos();
  if (QApplication::widgetAt(point) != this)
    return std::nullopt;
  return ToDevice(mapFromGlobal(point));
}

void DisplayView::TakeCursor() {
  if (!mIsWithdrawn)
    TrackCursor(FindCursor());
}

void DisplayView::TrackCursor(const std::optional<PixelPoint>& aClientPoint) {
  if (mIsWithdrawn)
    return; // The content may have another view by now.
  mContent->SetCursor(aClientPoint);
  if (mContent->IsCursorLineEnabled())
    update();
}

void DisplayView::contextMenuEvent(QContextMenuEvent* aEvent) {
  const bool isByKeyboard = aEvent->reason() == QContextMenuEvent::Keyboard;
  Q_EMIT MenuWanted(isByKeyboard ? mapToGlobal(rect().center()) : aEvent->globalPos());
}

} // namespace krgui
