// A region of interest drawn on a real screen: by the X server's mouse and keyboard, over a picture that a thread
// draws.

#include "displaypictures.h"
#include "displayscreen.h"
#include "region/regioneditor.h"
#include "viewerlab.h"
#include "windowwait.h"

#include <QDoubleSpinBox>
#include <QVBoxLayout>
#include <QWindow>

#include <cmath>

using krviewer::DeviceWork;
using krviewer::Region;
using krviewer::RegionEditor;

namespace {

/// How often a button of the mouse came up in this program.
class ReleaseCounter : public QObject {
public:
  ReleaseCounter() { qApp->installEventFilter(this); }
  int GetCount() const { return mCount; }

private:
  bool eventFilter(QObject*, QEvent* aEvent) override {
    mCount += aEvent->type() == QEvent::MouseButtonRelease ? 1 : 0;
    return false;
  }

  int mCount = 0;
};

class RegionOnScreen : public ViewerLabTest {
protected:
  ~RegionOnScreen() override { mAcquisition.reset(); }

  void LookAgain() override { mAcquisition->LookAgain(); }

  // As on a camera's page: the bar above the picture.
  void Open() {
    auto* const layout = new QVBoxLayout(&mPage);
    // The picture stays where it is when the bar is shown, so that the mouse meets what was reckoned.
    QSizePolicy policy = mEditor.GetBar().sizePolicy();
    policy.setRetainSizeWhenHidden(true);
    mEditor.GetBar().setSizePolicy(policy);
    layout->addWidget(&mEditor.GetBar());
    ASSERT_TRUE(mWindow.CreateIn(&mPage).IsOK());
    layout->addWidget(mWindow.GetWidget(), 1);
    mPage.resize(900, 700);
    mPage.show();
    ASSERT_TRUE(krtest::AwaitActive(&mPage));
    ViewerLabTest::Open();
    ASSERT_TRUE(AwaitPicture(1280, 960));
    mEditor.Begin();
    ASSERT_TRUE(Await([this] { return mEditor.IsEditing(); }));
  }
  bool AwaitPicture(std::uint32_t aWidth, std::uint32_t aHeight) {
    return Await([&] {
      const auto mapping = mWindow.GetMapping();
      return mapping && mapping->imageWidth == aWidth && mapping->imageHeight == aHeight;
    });
  }
  QWidget& GetView() const { return *mWindow.GetWidget()->findChild<QWidget*>("display"); }
  QPoint ToScreen(double aImageX, double aImageY) const {
    const KrDisplayMapping mapping = *mWindow.GetMapping();
    const QPointF place(mapping.ToWidgetX(aImageX), mapping.ToWidgetY(aImageY));
    return GetView().mapToGlobal(place.toPoint());
  }
  // The server's pixels, which may be smaller than the toolkit's.
  void MoveMouse(const QPoint& aScreenPoint) const {
    const double ratio = mPage.devicePixelRatioF();
    krtest::MoveHands({"mousemove", QString::number(std::lround(aScreenPoint.x() * ratio)),
                       QString::number(std::lround(aScreenPoint.y() * ratio))});
  }
  /// The region is as it was drawn when the button has come up, which is the last of the gesture.
  void Drag(const QPoint& aFrom, const QPoint& aTo) {
    const ReleaseCounter releases;
    const Region before = mEditor.GetRegion();
    MoveMouse(aFrom);
    krtest::MoveHands({"mousedown", "1"});
    MoveMouse((aFrom + aTo) / 2);
    MoveMouse(aTo);
    krtest::MoveHands({"mouseup", "1"});
    ASSERT_TRUE(Await([&] { return releases.GetCount() > 0; }));
    EXPECT_NE(mEditor.GetRegion(), before);
  }
  // How far the mouse's whole pixels are from the region's on the camera, and half an increment.
  static void ExpectNear(std::int64_t aActual, std::int64_t aExpected) { EXPECT_NEAR(aActual, aExpected, 8); }
  QColor GetScreenColor(const QPoint& aPoint) const { return GrabScreen(QRect(aPoint, QSize(1, 1))).pixelColor(0, 0); }
  void AwaitRegion(const Region& aRegion) {
    EXPECT_TRUE(Await([&] { return mEditor.GetRegion() == aRegion; }))
        << mEditor.GetRegion().x.length << " at " << mEditor.GetRegion().x.offset;
  }

  QWidget mPage;
  RegionEditor mEditor{mWindow, [this](DeviceWork aWork) { mAcquisition->Do(std::move(aWork)); }};
};

} // namespace

TEST_F(RegionOnScreen, RegionDragged_IsWhatFramesHave) {
  Open();

  Drag(ToScreen(320, 240), ToScreen(960, 720));
  const Region drawn = mEditor.GetRegion();
  ExpectNear(drawn.x.offset, 320);
  ExpectNear(drawn.y.offset, 240);
  ExpectNear(drawn.x.offset + drawn.x.length, 960);
  ExpectNear(drawn.y.offset + drawn.y.length, 720);
  krtest::MoveHands({"key", "Return"});

  EXPECT_TRUE(AwaitPicture(static_cast<std::uint32_t>(drawn.x.length), static_cast<std::uint32_t>(drawn.y.length)));
}

TEST_F(RegionOnScreen, PointerOverThePicture_IsTheOrdinaryOneAfterTheDrawing) {
  Open();
  Drag(ToScreen(320, 240), ToScreen(960, 720));
  const QWindow& native = *(GetView().windowHandle() ? GetView().windowHandle() : mPage.windowHandle());
  // On the edge, which has a pointer of its own.
  MoveMouse(ToScreen(static_cast<double>(mEditor.GetRegion().x.offset), 400));
  ASSERT_TRUE(Await([&] { return native.cursor().shape() == Qt::SizeHorCursor; }));

  krtest::MoveHands({"key", "Escape"});

  EXPECT_TRUE(Await([this] { return !mEditor.IsEditing(); }));
  EXPECT_EQ(native.cursor().shape(), Qt::ArrowCursor);
}

TEST_F(RegionOnScreen, RegionDraggedByItsInsideAndItsHandle_FollowsTheMouse) {
  Open();
  Drag(ToScreen(320, 240), ToScreen(960, 720));
  const Region drawn = mEditor.GetRegion();

  Drag(ToScreen(640, 480), ToScreen(540, 400));
  EXPECT_EQ(mEditor.GetRegion().x.length, drawn.x.length);
  EXPECT_EQ(mEditor.GetRegion().y.length, drawn.y.length);
  ExpectNear(mEditor.GetRegion().x.offset, drawn.x.offset - 100);
  ExpectNear(mEditor.GetRegion().y.offset, drawn.y.offset - 80);
  const Region moved = mEditor.GetRegion();
  const auto right = static_cast<double>(moved.x.offset + moved.x.length);
  Drag(ToScreen(right, 400), ToScreen(right + 200, 400));

  EXPECT_EQ(mEditor.GetRegion().x.offset, moved.x.offset);
  ExpectNear(mEditor.GetRegion().x.length, moved.x.length + 200);
  EXPECT_EQ(mEditor.GetRegion().y, moved.y);
}

TEST_F(RegionOnScreen, Outline_StaysOverThePictureWhileFramesCome) {
  Open();
  Drag(ToScreen(320, 240), ToScreen(960, 720));
  const Region drawn = mEditor.GetRegion();
  const auto left = static_cast<double>(drawn.x.offset);
  const QPoint onLine = ToScreen(left, 360) + QPoint(1, 0); // The middle one of three.

  for (int look = 0; look < 5; ++look) {
    const std::uint64_t shown = mWindow.GetStatistics().shown;
    ASSERT_TRUE(Await([&] { return mWindow.GetStatistics().shown > shown; }));
    EXPECT_TRUE(Await([&] { return GetScreenColor(onLine) == QColor(Qt::white); }));
  }

  mEditor.Cancel();
  EXPECT_TRUE(Await([&] { return GetScreenColor(onLine) != QColor(Qt::white); }));
}

TEST_F(RegionOnScreen, Keys_DrawTheRegion) {
  Open();
  Drag(ToScreen(320, 240), ToScreen(960, 720));
  const Region drawn = mEditor.GetRegion();
  const auto step = static_cast<std::int64_t>(mEditor.GetBar().findChild<QDoubleSpinBox*>("regionX")->singleStep());
  const auto sizeStep =
      static_cast<std::int64_t>(mEditor.GetBar().findChild<QDoubleSpinBox*>("regionHeight")->singleStep());

  krtest::MoveHands({"key", "Right"});
  AwaitRegion({{drawn.x.offset + step, drawn.x.length}, drawn.y});
  krtest::MoveHands({"key", "shift+Up"});
  AwaitRegion({{drawn.x.offset + step, drawn.x.length}, {drawn.y.offset, drawn.y.length - sizeStep}});
  krtest::MoveHands({"key", "Escape"});

  EXPECT_TRUE(Await([this] { return !mEditor.IsEditing(); }));
  EXPECT_EQ(mWindow.GetMapping()->imageWidth, 1280U);
}
