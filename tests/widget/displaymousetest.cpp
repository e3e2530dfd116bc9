// Where the display says the mouse cursor is: from the moment it comes until the window goes.

#include "display/displayview.h"
#include "displayfixture.h"
#include "windowwait.h"

#include <QContextMenuEvent>
#include <QMenu>

#include <gtest/gtest.h>

#include <memory>

namespace {

class KrDisplayWndMouseTest : public KrDisplayWndTest {
protected:
  static constexpr QPoint kPoint = QPoint(60, 40);

  ~KrDisplayWndMouseTest() override { QCursor::setPos(2000, 2000); }

  // An image with a pixel for each of the window's.
  void OpenWithImage() {
    Open(200, 100);
    ASSERT_TRUE(mWindow.Display(MakeNoise(200, 100), false).IsOK());
    Grab();
  }
  QMenu* FindMenu() const { return mWindow.GetWidget()->findChild<QMenu*>("menu1511"); }
  // As the toolkit does: what lies under a menu is left.
  void OpenMenu() {
    QContextMenuEvent event(QContextMenuEvent::Mouse, kPoint, GetView().mapToGlobal(kPoint));
    QCoreApplication::sendEvent(&GetView(), &event);
    QEvent leave(QEvent::Leave);
    QCoreApplication::sendEvent(&GetView(), &leave);
  }
  void ExpectPixelUnderCursor() const {
    EXPECT_TRUE(krtest::AwaitCondition([&] { return mWindow.GetCursorPixel().has_value(); }));
    const std::optional<KrDisplayPixel> pixel = mWindow.GetCursorPixel();
    ASSERT_TRUE(pixel.has_value());
    EXPECT_EQ(pixel->x, 60u);
    EXPECT_EQ(pixel->y, 40u);
  }
};

} // namespace

TEST_F(KrDisplayWndMouseTest, Cursor_ThatEnters_IsKnownBeforeItMoves) {
  OpenWithImage();
  const QPointF point(kPoint);
  QEnterEvent enter(point, point, GetView().mapToGlobal(point));

  QCoreApplication::sendEvent(&GetView(), &enter);

  ExpectPixelUnderCursor();
}

TEST_F(KrDisplayWndMouseTest, Cursor_WhereTheWindowOpens_IsKnownWithTheFirstPaint) {
  QCursor::setPos(QPoint(50, 50) + kPoint);

  OpenWithImage();

  EXPECT_TRUE(GetView().rect().contains(GetView().mapFromGlobal(QCursor::pos())));
  EXPECT_TRUE(mWindow.GetCursorPixel().has_value());
}

TEST_F(KrDisplayWndMouseTest, Cursor_BesideTheWindowThatOpens_IsNone) {
  QCursor::setPos(1000, 900);

  OpenWithImage();

  EXPECT_FALSE(mWindow.GetCursorPixel().has_value());
}

TEST_F(KrDisplayWndMouseTest, Cursor_UnderAMenuThatCloses_IsKnownAgain) {
  OpenWithImage();
  QCursor::setPos(GetView().mapToGlobal(kPoint));
  OpenMenu();
  ASSERT_NE(FindMenu(), nullptr);
  ASSERT_FALSE(mWindow.GetCursorPixel().has_value());

  FindMenu()->close();

  ExpectPixelUnderCursor();
}

TEST_F(KrDisplayWndMouseTest, Cursor_AfterACommandOfTheMenu_IsKnownAgain) {
  OpenWithImage();
  QCursor::setPos(GetView().mapToGlobal(kPoint));
  OpenMenu();
  ASSERT_NE(FindMenu(), nullptr);
  FindMenu()->setActiveAction(FindMenu()->actions().front());

  QTest::keyClick(FindMenu(), Qt::Key_Return);

  ExpectPixelUnderCursor();
}

TEST_F(KrDisplayWndMouseTest, Cursor_ElsewhereWhenTheMenuCloses_IsNone) {
  OpenWithImage();
  QCursor::setPos(1000, 900);
  OpenMenu();
  ASSERT_NE(FindMenu(), nullptr);

  FindMenu()->close();

  EXPECT_TRUE(krtest::AwaitCondition([&] { return FindMenu() == nullptr; }));
  EXPECT_FALSE(mWindow.GetCursorPixel().has_value());
}

TEST_F(KrDisplayWndMouseTest, Cursor_OfAClosedWindow_IsNone) {
  OpenWithImage();
  QTest::mouseMove(&GetView(), kPoint);
  ASSERT_TRUE(mWindow.GetCursorPixel().has_value());

  ASSERT_TRUE(mWindow.Close().IsOK());

  EXPECT_FALSE(mWindow.GetCursorPixel().has_value());
}

TEST(DisplayViewMouse, Withdrawn_LeavesTheContentToTheNextView) {
  const auto content = std::make_shared<krgui::DisplayContent>();
  QWidget window;
  window.resize(200, 100);
  krgui::DisplayView view(content, &window);
  view.resize(200, 100);
  window.show();
  ASSERT_TRUE(krtest::AwaitExposed(&window));
  const KrBuffer image = MakeNoise(200, 100);
  auto paint = krgui::DisplayContent::Paint::NotNeeded;
  ASSERT_TRUE(content->Display(image.GetImage(), paint).IsOK());
  view.repaint();
  QTest::mouseMove(&view, {60, 40});
  ASSERT_TRUE(content->GetCursorPixel().has_value());
  view.Withdraw();
  content->SetCursor(krgui::PixelPoint{10, 20});
  const double factor = content->ChangeView([](krgui::ViewGeometry& aView) { return aView.GetFactor(); });

  QTest::mouseMove(&view, {61, 41});
  QTest::keyClick(&view, Qt::Key_Plus);
  QEvent leave(QEvent::Leave);
  QCoreApplication::sendEvent(&view, &leave);

  const auto pixel = content->GetCursorPixel();
  ASSERT_TRUE(pixel.has_value());
  EXPECT_EQ(pixel->x, static_cast<std::uint32_t>(10 / view.devicePixelRatioF()));
  EXPECT_EQ(content->ChangeView([](krgui::ViewGeometry& aView) { return aView.GetFactor(); }), factor);
}
