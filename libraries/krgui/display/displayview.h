#pragma once
// The widget that covers a display window's client area. It gives the content a surface to draw on from any thread,
// paints what the surface cannot keep, and turns keys, wheel and mouse into changes of the view. It shares the content,
// so that a paint may come after the window object's end. Scroll bars and menus are left to the window.

#include "display/displaypainter.h"
#include "logic/display/displaycontent.h"
#include "logic/display/wheelsteps.h"
#include "platform/drawingsurface.h"

#include <QTimer>
#include <QWidget>

#include <functional>
#include <memory>
#include <optional>

namespace krgui {

class DisplayView : public QWidget {
  Q_OBJECT

public:
  using SurfaceMaker = std::function<std::unique_ptr<DrawingSurface>(QWidget&, SurfaceKind)>;

  /// aBest is the best way onto the screen that is tried.
  DisplayView(std::shared_ptr<DisplayContent> aContent, QWidget* aParent,
              SurfaceKind aBest = SurfaceKind::SharedDescriptor, SurfaceMaker aMaker = &MakeDrawingSurface);
  ~DisplayView() override;

  /// Gives the surface back for good: when this returns, no thread draws into the window any more.
  void Withdraw();
  /// Tells the geometry how large the client area is.
  void UpdateClient();
  /// Asks where the mouse is, after what covered the view has gone.
  void TakeCursor();
  /// Lets the wheel over what lies above the view, as its scroll bars do, do what it does over the view.
  void TakeWheelOf(QWidget& aWidget);

  QPaintEngine* paintEngine() const override;

Q_SIGNALS:
  /// A paint found how the scroll bars are to be. They must not be touched before the paint is over.
  void BarsFound(const krgui::BarChanges& aChanges);
  /// The right mouse button was pressed at a point of the client area, in device pixels.
  void ContextPointSet(const krgui::PixelPoint& aClientPoint);
  /// The context menu is wanted at a point of the screen.
  void MenuWanted(const QPoint& aScreenPoint);

protected:
  bool event(QEvent* aEvent) override;
  bool eventFilter(QObject* aWatched, QEvent* aEvent) override;
  void changeEvent(QEvent* aEvent) override;
  void paintEvent(QPaintEvent* aEvent) override;
  void keyPressEvent(QKeyEvent* aEvent) override;
  void wheelEvent(QWheelEvent* aEvent) override;
  void mousePressEvent(QMouseEvent* aEvent) override;
  void mouseMoveEvent(QMouseEvent* aEvent) override;
  void enterEvent(QEnterEvent* aEvent) override;
  void leaveEvent(QEvent* aEvent) override;
  void contextMenuEvent(QContextMenuEvent* aEvent) override;

private:
  PixelPoint ToDevice(const QPointF& aPoint) const;
  ScreenLook TakeScreenLook() const;
  QSize FindDeviceSize() const;
  void MakeSurface();
  void UseSurface(std::unique_ptr<DrawingSurface> aSurface);
  void DropSurface();
  void SetPaintsOnScreen(bool aPaintsOnScreen);
  void ReturnToScreen();
  void PaintRedirected(const ScreenLook& aScreen);
  void Zoom(double aStep, int aCount);
  std::optional<PixelPoint> FindCursor() const;
  void TrackCursor(const std::optional<PixelPoint>& aClientPoint);

  const std::shared_ptr<DisplayContent> mContent;
  const SurfaceKind mBest;
  const SurfaceMaker mMakeSurface;
  const bool mMayPaintOnScreen; ///< The platform lets us, and somebody wants it.
  DisplayPainter mPainter;      ///< Used under the display lock.
  std::unique_ptr<DrawingSurface> mSurface;
  bool mPaintsOnScreen; ///< By the surface; else by the toolkit.
  bool mHasPainted = false;
  bool mIsWithdrawn = false;
  QTimer mRetryTimer;  ///< Until the screen takes a frame that it did not take.
  QTimer mScreenTimer; ///< Until the screen takes pixels from us again.
  WheelSteps mWheelSteps;
};

} // namespace krgui
