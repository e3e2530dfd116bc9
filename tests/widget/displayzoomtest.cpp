// How the user and the application zoom the display, by what the scroll bars then range over.

#include "displayfixture.h"
#include "windowwait.h"

#include <QSignalSpy>
#include <QWheelEvent>

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <vector>

namespace {

constexpr QSize kImage(1000, 800);

class KrDisplayWndZoomTest : public KrDisplayWndTest {
protected:
  void SetUp() override {
    Open(400, 300);
    ASSERT_TRUE(krtest::AwaitActive(mWindow.GetWidget()));
    ASSERT_TRUE(mWindow.Display(MakeGrey(1000, 800, 90), false).IsOK());
    Grab();
  }

  double GetFitFactor() const {
    const QSize client = GetDeviceSize();
    return std::min(double(client.width()) / kImage.width(), double(client.height()) / kImage.height());
  }

  int GetBarThickness() const { return int(std::lround(18 * GetRatio())); }

  // What is painted has this factor.
  void ExpectFactor(double aFactor, const char* aWhere) {
    Grab();
    const plainpicture::ScrolledView view(GetDeviceSize(), kImage, aFactor, GetBarThickness());
    int least = -1, greatest = -1;
    ASSERT_TRUE(view.hasHorizontalBar && view.hasVerticalBar) << aWhere;
    mWindow.GetHScrollRange(least, greatest);
    EXPECT_EQ(least, 0) << aWhere;
    EXPECT_NEAR(greatest, view.GetHorizontalExtent() + view.GetHorizontalPage(), 1) << aWhere;
    mWindow.GetVScrollRange(least, greatest);
    EXPECT_EQ(least, 0) << aWhere;
    EXPECT_NEAR(greatest, view.GetVerticalExtent() + view.GetVerticalPage(), 1) << aWhere;
    EXPECT_TRUE(GetHorizontalBar().isVisible()) << aWhere;
    EXPECT_TRUE(GetVerticalBar().isVisible()) << aWhere;
  }

  void ExpectFitted(const char* aWhere) {
    Grab();
    EXPECT_FALSE(GetHorizontalBar().isVisible()) << aWhere;
    EXPECT_FALSE(GetVerticalBar().isVisible()) << aWhere;
  }

  // Turns the wheel over the view; true when the view has used it.
  bool Turn(QPoint aDelta) { return TurnOver(GetView(), aDelta); }
  static bool TurnOver(QWidget& aWidget, QPoint aDelta) {
    const QPointF middle = aWidget.rect().center();
    QWheelEvent event(middle, aWidget.mapToGlobal(middle), QPoint(), aDelta, Qt::NoButton, Qt::NoModifier,
                      Qt::NoScrollPhase, false);
    event.ignore();
    QCoreApplication::sendEvent(&aWidget, &event);
    return event.isAccepted();
  }
};

// Keys that come to a widget.
class KeyCounter : public QObject {
public:
  explicit KeyCounter(QWidget& aWidget) { aWidget.installEventFilter(this); }
  std::vector<int> keys;

protected:
  bool eventFilter(QObject*, QEvent* aEvent) override {
    if (aEvent->type() == QEvent::KeyPress)
      keys.push_back(static_cast<QKeyEvent*>(aEvent)->key());
    return false;
  }
};

} // namespace

TEST_F(KrDisplayWndZoomTest, Operations_Each_ZoomByTheirStep) {
  mWindow.Zoom1_1();
  ExpectFactor(1.0, "one to one");
  mWindow.ZoomIn();
  ExpectFactor(1.5, "in");
  mWindow.ZoomIn();
  ExpectFactor(2.25, "in twice");
  mWindow.ZoomOut();
  ExpectFactor(1.5, "in twice, out");
  mWindow.ZoomFit();
  ExpectFitted("fit");
  mWindow.ZoomIn();
  Grab();
  mWindow.ZoomIn();
  ExpectFactor(GetFitFactor() * 2.25, "fit, in twice");
}

TEST_F(KrDisplayWndZoomTest, ZoomOut_UntilTheImageFits_FitsItAndStaysSoWhenTheWindowGrows) {
  mWindow.Zoom1_1();
  Grab();
  for (int i = 0; i < 4; ++i)
    mWindow.ZoomOut();
  ExpectFitted("out");

  mWindow.SetPosition(50, 50, 600, 450);

  const QImage picture = Grab();
  EXPECT_EQ(plainpicture::Count(picture, picture.rect(), QColor(90, 90, 90)),
            plainpicture::FitRect(picture.size(), kImage).width() *
                plainpicture::FitRect(picture.size(), kImage).height());
}

TEST_F(KrDisplayWndZoomTest, OneToOne_IsOnePixelOfTheImageOnOneOfTheScreen) {
  const KrBuffer noise = MakeNoise(1000, 800);
  ASSERT_TRUE(mWindow.Display(noise, false).IsOK());

  mWindow.Zoom1_1();

  Grab();
  const plainpicture::ScrolledView view(GetDeviceSize(), kImage, 1.0, GetBarThickness());
  const QImage expected =
      plainpicture::ComputeScrolled(view, ToQImage(noise), mWindow.GetHScrollPos(), mWindow.GetVScrollPos());
  EXPECT_EQ(plainpicture::Compare(Grab().copy(QRect(QPoint(0, 0), view.view)), expected), "");
}

TEST_F(KrDisplayWndZoomTest, Keys_PlusAndMinus_ZoomAndGoOnToTheDialog) {
  struct {
    const char* name;
    Qt::Key key;
    Qt::KeyboardModifiers modifiers;
    double step;
  } const kRows[] = {
      {"numeric plus", Qt::Key_Plus, Qt::KeypadModifier, 1.2},
      {"numeric minus", Qt::Key_Minus, Qt::KeypadModifier, 1 / 1.2},
      {"plus", Qt::Key_Plus, Qt::ShiftModifier, 1.2},
      {"minus", Qt::Key_Minus, Qt::NoModifier, 1 / 1.2},
      {"plus of the window manager", Qt::Key_Plus, Qt::AltModifier, 1.0},
      {"another key", Qt::Key_A, Qt::NoModifier, 1.0},
      {"an arrow", Qt::Key_Left, Qt::NoModifier, 1.0},
  };
  for (const auto& row : kRows) {
    mWindow.Zoom1_1();
    Grab();
    KeyCounter dialog(*mWindow.GetWidget());

    QTest::keyClick(&GetView(), row.key, row.modifiers);

    ExpectFactor(row.step, row.name);
    // The modifiers come as keys of their own.
    ASSERT_FALSE(dialog.keys.empty()) << row.name;
    EXPECT_EQ(dialog.keys.back(), row.key) << row.name;
  }
}

TEST_F(KrDisplayWndZoomTest, Wheel_TurnsOfAnySize_AddUpToWholeSteps) {
  struct {
    const char* name;
    std::vector<QPoint> turns;
    int steps;
  } const kRows[] = {
      {"one step away", {{0, 120}}, 1},
      {"one step towards", {{0, -120}}, -1},
      {"two steps at once", {{0, 240}}, 2},
      {"half a step", {{0, 60}}, 0},
      {"the other half comes later", {{0, 60}, {0, 60}}, 1},
      {"parts of a fine wheel", {{0, 50}, {0, 50}, {0, 50}, {0, 50}, {0, 50}}, 2},
      {"a part, back over it, and a step", {{0, 60}, {0, -60}, {0, -120}}, -1},
      {"to the side", {{120, 0}}, 0},
      {"not at all", {{0, 0}}, 0},
  };
  for (const auto& row : kRows) {
    mWindow.Zoom1_1();
    Grab();

    for (const QPoint& turn : row.turns)
      EXPECT_TRUE(Turn(turn)) << row.name;

    ExpectFactor(std::pow(1.1, row.steps), row.name);
    // What remains must not count in the next row.
    int sum = 0;
    for (const QPoint& turn : row.turns)
      sum += turn.y();
    Turn({0, -(sum % 120)});
  }
}

TEST_F(KrDisplayWndZoomTest, Wheel_OverAScrollBar_ZoomsAsOverTheImage) {
  mWindow.Zoom1_1();
  Grab();
  // At its end, where there would be nothing to scroll.
  QTest::keyClick(&GetVerticalBar(), Qt::Key_Home);

  EXPECT_TRUE(TurnOver(GetVerticalBar(), {0, 120}));
  ExpectFactor(1.1, "over the vertical bar");
  EXPECT_TRUE(TurnOver(GetHorizontalBar(), {0, 240}));
  ExpectFactor(1.1 * 1.1 * 1.1, "over the horizontal bar");
  EXPECT_TRUE(TurnOver(GetHorizontalBar(), {0, -60}));
  EXPECT_TRUE(Turn({0, -60}));
  ExpectFactor(1.1 * 1.1, "half a step over a bar, the other half over the image");
  const int position = mWindow.GetHScrollPos();
  EXPECT_TRUE(TurnOver(GetHorizontalBar(), {120, 0}));
  ExpectFactor(1.1 * 1.1, "to the side");
  EXPECT_EQ(mWindow.GetHScrollPos(), position);
}

TEST_F(KrDisplayWndZoomTest, Wheel_UntilTheImageFits_FitsIt) {
  mWindow.Zoom1_1();
  Grab();

  for (int i = 0; i < 15; ++i)
    Turn({0, -120});

  ExpectFitted("wheel");
}

TEST_F(KrDisplayWndZoomTest, Buttons_OfTheMouse_TakeTheFocus) {
  for (Qt::MouseButton button : {Qt::LeftButton, Qt::MiddleButton, Qt::RightButton}) {
    GetView().clearFocus();
    ASSERT_FALSE(GetView().hasFocus());

    QTest::mousePress(&GetView(), button);

    EXPECT_TRUE(GetView().hasFocus()) << button;
    QTest::mouseRelease(&GetView(), button);
  }
}

TEST_F(KrDisplayWndZoomTest, Zoom_OfAClosedWindow_IsThereWhenItOpens) {
  ASSERT_TRUE(mWindow.Close().IsOK());

  mWindow.Zoom1_1();

  Open(400, 300);
  ExpectFactor(1.0, "opened again");
}

TEST_F(KrDisplayWndZoomTest, Zoom_InsideAnImage_KeepsThePartThatIsSeen) {
  mWindow.Zoom1_1();
  Grab();
  QTest::keyClick(&GetHorizontalBar(), Qt::Key_End);
  QTest::keyClick(&GetVerticalBar(), Qt::Key_Home);
  Grab();

  mWindow.ZoomIn();

  Grab();
  EXPECT_EQ(mWindow.GetHScrollPos(), GetHorizontalBar().maximum());
  EXPECT_EQ(mWindow.GetVScrollPos(), 0);
}
