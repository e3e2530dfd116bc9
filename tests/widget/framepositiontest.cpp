// The remembered position: what is stored, how it is limited, and that it survives closing and reopening.

#include "testwnd.h"
#include "windowwait.h"

#include <gtest/gtest.h>

#include <limits>

namespace krgui {

namespace {

bool Expose(TestWnd& aWindow) {
  return krtest::AwaitExposed(aWindow.GetWidget());
}

struct LimitCase {
  const char* name;
  WindowTraits traits;
  Position asked;
  Position expected;
};

class PositionLimits : public testing::TestWithParam<LimitCase> {};

TEST_P(PositionLimits, SetPosition_OnAClosedWindow_StoresTheLimitedRectangle) {
  TestWnd window(GetParam().traits);
  const Position& asked = GetParam().asked;

  window.SetPosition(asked.x, asked.y, asked.width, asked.height);

  EXPECT_EQ(GetPosition(window), GetParam().expected);
}

TEST_P(PositionLimits, SetPosition_OnAnOpenWindow_GivesItTheLimitedSize) {
  TestWnd window(GetParam().traits);
  const Position& asked = GetParam().asked;
  const Position& expected = GetParam().expected;
  ASSERT_TRUE(window.ShowModeless(0).IsOK());
  ASSERT_TRUE(Expose(window));

  window.SetPosition(asked.x, asked.y, asked.width, asked.height);

  EXPECT_EQ(window.GetWidget()->size(), QSize(expected.width, expected.height));
  EXPECT_EQ(GetPosition(window), expected);
}

INSTANTIATE_TEST_SUITE_P(
    Windows, PositionLimits,
    testing::Values(LimitCase{"DisplayTooSmall", kDisplayTraits, {10, 20, 5, 5}, {10, 20, 30, 20}},
                    LimitCase{"DisplayNegative", kDisplayTraits, {10, 20, -400, -300}, {10, 20, 30, 20}},
                    LimitCase{"DisplayWithin", kDisplayTraits, {40, 50, 640, 480}, {40, 50, 640, 480}},
                    LimitCase{"TerminalTooNarrow", kSerialTerminalTraits, {1, 2, 100, 400}, {1, 2, 608, 400}},
                    LimitCase{"TerminalTooWide", kSerialTerminalTraits, {1, 2, 1900, 5000}, {1, 2, 608, 2000}},
                    LimitCase{"FinderTooLarge", kDeviceFinderTraits, {10, 20, 5000, 5000}, {10, 20, 800, 600}},
                    LimitCase{"FinderTooSmall", kDeviceFinderTraits, {10, 20, 0, 0}, {10, 20, 500, 300}},
                    LimitCase{"BrowserTooSmall", kGenBrowserTraits, {10, 20, 299, 301}, {10, 20, 300, 301}},
                    LimitCase{"BridgeTooSmall", kCameraBridgeManagerTraits, {10, 20, 774, 581}, {10, 20, 775, 582}}),
    [](const auto& aInfo) { return aInfo.param.name; });

TEST(WndPosition, Extremes_DoNotOverflow) {
  constexpr int kMost = std::numeric_limits<int>::max();
  constexpr int kLeast = std::numeric_limits<int>::min();
  TestWnd window;

  window.SetPosition(kMost, kMost, kMost, kMost);
  const Position most = GetPosition(window);
  window.SetPosition(kLeast, kLeast, kLeast, kLeast);
  const Position least = GetPosition(window);

  EXPECT_EQ(most.x, kMost);
  EXPECT_EQ(least.x, kLeast);
  EXPECT_EQ(least.width, 30);
}

TEST(WndPosition, SetBeforeShowing_TakesEffectWhenTheWindowOpens) {
  TestWnd window;
  window.SetPosition(120, 130, 400, 300);

  ASSERT_TRUE(window.ShowModeless(0).IsOK());

  EXPECT_EQ(GetPosition(window), (Position{120, 130, 400, 300}));
  ASSERT_TRUE(Expose(window));
  EXPECT_EQ(GetPosition(window), (Position{120, 130, 400, 300}));
  EXPECT_EQ(window.GetWidget()->pos(), QPoint(120, 130));
  EXPECT_EQ(window.GetWidget()->size(), QSize(400, 300));
}

TEST(WndPosition, NeverSet_OpensAtTheTemplatesSizeWithinTheLimits) {
  TestWnd window(kSerialTerminalTraits);

  ASSERT_TRUE(window.ShowModeless(0).IsOK());

  EXPECT_EQ(window.GetWidget()->width(), 608);
  EXPECT_GE(window.GetWidget()->height(), 350);
  EXPECT_LE(window.GetWidget()->height(), 2000);
}

TEST(WndPosition, OfAChild_IsInItsParentsClientCoordinates) {
  QWidget parent;
  parent.move(200, 100);
  parent.resize(600, 500);
  parent.show();
  TestWnd window;
  window.SetPosition(30, 40, 200, 150);

  ASSERT_TRUE(window.Create(parent.winId(), 0).IsOK());

  EXPECT_EQ(window.GetWidget()->geometry(), QRect(30, 40, 200, 150));
  EXPECT_EQ(GetPosition(window), (Position{30, 40, 200, 150}));
  window.SetPosition(50, 60, 210, 160);
  EXPECT_EQ(window.GetWidget()->geometry(), QRect(50, 60, 210, 160));
}

TEST(WndPosition, OfAChildTakenFromItsParent_IsRelativeToItself) {
  QWidget parent;
  TestWnd window;
  window.SetPosition(30, 40, 200, 150);
  ASSERT_TRUE(window.CreateIn(&parent).IsOK());

  window.GetWidget()->setParent(nullptr, Qt::Widget);

  EXPECT_EQ(GetPosition(window), (Position{0, 0, 200, 150}));
}

TEST(WndPosition, AfterClosing_IsTheCapturedOne) {
  TestWnd window;
  ASSERT_TRUE(window.ShowModeless(0).IsOK());
  ASSERT_TRUE(Expose(window));
  window.GetWidget()->move(210, 220);
  window.GetWidget()->resize(410, 310);

  ASSERT_TRUE(window.Close().IsOK());

  EXPECT_EQ(GetPosition(window), (Position{210, 220, 410, 310}));
}

TEST(WndPosition, ModelessReopened_OpensAtTheCapturedPosition) {
  TestWnd window;
  ASSERT_TRUE(window.ShowModeless(0).IsOK());
  ASSERT_TRUE(Expose(window));
  window.GetWidget()->move(210, 220);
  window.GetWidget()->resize(410, 310);
  ASSERT_TRUE(window.Close().IsOK());

  ASSERT_TRUE(window.ShowModeless(0).IsOK());

  ASSERT_TRUE(Expose(window));
  EXPECT_EQ(window.GetWidget()->pos(), QPoint(210, 220));
  EXPECT_EQ(window.GetWidget()->size(), QSize(410, 310));
}

TEST(WndPosition, TenReopenings_NeitherMoveNorResize) {
  TestWnd window(kDeviceFinderTraits);
  window.SetPosition(150, 160, 700, 500);
  for (int opening = 0; opening < 10; ++opening) {
    ASSERT_TRUE(window.ShowModeless(0).IsOK());
    ASSERT_TRUE(Expose(window));
    ASSERT_TRUE(window.Close().IsOK());
    ASSERT_EQ(GetPosition(window), (Position{150, 160, 700, 500})) << "after opening " << opening;
  }
}

TEST(WndPosition, ClosedBeforeItCameOntoTheScreen_IsTheOneAskedFor) {
  TestWnd window;
  window.SetPosition(120, 130, 400, 300);
  ASSERT_TRUE(window.ShowModeless(0).IsOK());

  ASSERT_TRUE(window.Close().IsOK());

  EXPECT_EQ(GetPosition(window), (Position{120, 130, 400, 300}));
}

TEST(WndPosition, ClosedBeyondItsLimits_IsRememberedWithinThem) {
  QWidget parent;
  TestWnd window(kDisplayTraits);
  ASSERT_TRUE(window.CreateIn(&parent).IsOK());
  // As the application may have it.
  window.GetWidget()->setMinimumSize(0, 0);
  window.GetWidget()->setGeometry(40, 50, 10, 12);
  ASSERT_EQ(GetPosition(window), (Position{40, 50, 10, 12})) << "an open window has the size that it has";

  ASSERT_TRUE(window.Close().IsOK());

  EXPECT_EQ(GetPosition(window), (Position{40, 50, 30, 20}));
}

TEST(WndPosition, OfAModalWindow_IsRemembered) {
  TestWnd window;
  window.SetPosition(120, 130, 400, 300);
  window.onInitDialog = [&] {
    QMetaObject::invokeMethod(
        window.GetWidget(),
        [&] {
          EXPECT_TRUE(Expose(window));
          window.GetWidget()->resize(420, 320);
          EXPECT_TRUE(window.Close().IsOK());
        },
        Qt::QueuedConnection);
  };

  ASSERT_TRUE(window.ShowModal(0).IsOK());

  EXPECT_EQ(GetPosition(window), (Position{120, 130, 420, 320}));
}

TEST(WndPosition, Limits_OfAnOpenSizingWindow_AreTheTrackingLimits) {
  TestWnd window(kCameraBridgeManagerTraits);

  ASSERT_TRUE(window.ShowModeless(0).IsOK());

  EXPECT_EQ(window.GetWidget()->minimumSize(), QSize(775, 582));
  EXPECT_EQ(window.GetWidget()->maximumSize(), QSize(1600, 2500));
}

TEST(WndPosition, Limits_OfAFixedPopup_LeaveTheUserOneSizeAndTheApplicationAll) {
  TestWnd window(kDeviceFinderTraits);
  ASSERT_TRUE(window.ShowModeless(0).IsOK());
  const QWidget& widget = *window.GetWidget();
  EXPECT_EQ(widget.minimumSize(), widget.size());
  EXPECT_EQ(widget.maximumSize(), widget.size());

  window.SetPosition(100, 100, 510, 310);

  EXPECT_EQ(widget.size(), QSize(510, 310));
  EXPECT_EQ(widget.minimumSize(), QSize(510, 310));
  EXPECT_EQ(widget.maximumSize(), QSize(510, 310));
}

} // namespace

} // namespace krgui
