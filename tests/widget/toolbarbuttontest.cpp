#include "platform/toolbarbutton.h"

#include "paintcounter.h"
#include "platform/systemcolours.h"
#include "res/bitmaps.h"
#include "windowwait.h"

#include <QAccessible>
#include <QCursor>
#include <QImage>
#include <QMouseEvent>
#include <QPainter>
#include <QTest>

#include <gtest/gtest.h>

#include <memory>

namespace {

using krgui::BitmapGround;
using krgui::SystemColour;
using krgui::ToolBarButton;

constexpr int kSide = 24;
constexpr int kNone = 0;

class ToolBarButtons : public testing::Test {
protected:
  ToolBarButtons() {
    mWindow.resize(200, 100);
    MovePointer({150, 80});
  }

  ToolBarButton& Make(std::int32_t aDisabledBitmapID) {
    auto* const button =
        new ToolBarButton(static_cast<std::uint16_t>(krgui::kRefreshBitmapID), aDisabledBitmapID, &mWindow);
    button->setGeometry(10, 10, kSide, kSide);
    return *button;
  }

  void Show() {
    mWindow.show();
    mWindow.activateWindow();
    ASSERT_TRUE(krtest::AwaitActive(&mWindow));
  }

  void MovePointer(const QPoint& aPoint) { QCursor::setPos(mWindow.mapToGlobal(aPoint)); }

  QColor GetColour(SystemColour aColour) { return krgui::GetSystemColour(mWindow.palette(), aColour); }

  /// The button drawn on a black page, at the screen's scale.
  QImage Draw(const ToolBarButton& aButton, const QPoint& aOffset = {}) {
    const double ratio = aButton.devicePixelRatioF();
    QImage page(QSizeF(80 * ratio, 80 * ratio).toSize(), QImage::Format_RGB32);
    page.setDevicePixelRatio(ratio);
    page.fill(Qt::black);
    QPainter painter(&page);
    aButton.Draw(painter, aOffset);
    return page;
  }

  /// What is expected of a button: its rectangle filled, with a picture on it and a frame around it.
  QImage Expect(const QRect& aRect, const QColor& aFill, int aBitmapID, const QPoint& aPicture, bool aIsFramed) {
    const double ratio = mWindow.devicePixelRatioF();
    QImage page(QSizeF(80 * ratio, 80 * ratio).toSize(), QImage::Format_RGB32);
    page.setDevicePixelRatio(ratio);
    page.fill(Qt::black);
    QPainter painter(&page);
    painter.fillRect(aRect, aIsFramed ? GetColour(SystemColour::HotLight) : aFill);
    if (aIsFramed)
      painter.fillRect(aRect.adjusted(1, 1, -1, -1), aFill);
    painter.drawImage(aPicture, krgui::LoadBitmap(aBitmapID, ratio));
    return page;
  }

  QWidget mWindow;
};

} // namespace

TEST_F(ToolBarButtons, Drawing_CentresThePictureInTheMovedRectangle) {
  ToolBarButton& button = Make(kNone);
  struct Row {
    const char* name;
    QSize size;
    QPoint offset;
    QPoint picture;
  };
  const Row rows[] = {
      {"even size", {24, 24}, {0, 0}, {4, 4}},
      {"odd size", {25, 31}, {0, 0}, {4, 7}},
      {"moved", {24, 24}, {5, 7}, {9, 11}},
      {"odd and moved", {27, 19}, {3, 40}, {8, 41}},
      {"smaller than its picture", {10, 10}, {20, 20}, {17, 17}},
  };
  for (const Row& row : rows) {
    button.resize(row.size);

    EXPECT_EQ(Draw(button, row.offset), Expect({row.offset, row.size}, GetColour(SystemColour::ButtonFace),
                                               krgui::kRefreshBitmapID, row.picture, false))
        << row.name;
  }
}

TEST_F(ToolBarButtons, Pointer_TintsTheRectangleThatItIsIn) {
  ToolBarButton& button = Make(kNone);
  Show();
  struct Row {
    const char* name;
    QPoint pointer;
    QPoint offset;
    SystemColour colour;
  };
  const Row rows[] = {
      {"inside", {20, 20}, {0, 0}, SystemColour::GradientActiveCaption},
      {"first pixel", {10, 10}, {0, 0}, SystemColour::GradientActiveCaption},
      {"last pixel", {33, 33}, {0, 0}, SystemColour::GradientActiveCaption},
      {"just before", {9, 20}, {0, 0}, SystemColour::ButtonFace},
      {"just behind", {34, 20}, {0, 0}, SystemColour::ButtonFace},
      {"inside the moved rectangle", {50, 20}, {30, 0}, SystemColour::GradientActiveCaption},
      {"where the moved rectangle is not", {20, 20}, {30, 0}, SystemColour::ButtonFace},
  };
  for (const Row& row : rows) {
    MovePointer(row.pointer);

    const QImage page = Draw(button, row.offset);

    const double ratio = page.devicePixelRatio();
    const QPoint pixel = QPointF((row.offset + QPoint(1, 1)) * ratio).toPoint();
    EXPECT_EQ(page.pixelColor(pixel), GetColour(row.colour)) << row.name;
  }
}

TEST_F(ToolBarButtons, State_ChoosesPictureAndFrame) {
  struct Row {
    const char* name;
    std::int32_t disabledBitmap;
    bool isEnabled;
    std::uint32_t checked;
    int bitmap;
    bool isFramed;
  };
  const Row rows[] = {
      {"enabled", krgui::kDisabledRefreshBitmapID, true, 0, krgui::kRefreshBitmapID, false},
      {"enabled and checked", krgui::kDisabledRefreshBitmapID, true, 1, krgui::kRefreshBitmapID, true},
      {"checked state of 2", krgui::kDisabledRefreshBitmapID, true, 2, krgui::kRefreshBitmapID, false},
      {"disabled", krgui::kDisabledRefreshBitmapID, false, 0, krgui::kDisabledRefreshBitmapID, false},
      {"disabled and checked", krgui::kDisabledRefreshBitmapID, false, 1, krgui::kDisabledRefreshBitmapID, false},
      {"disabled without a picture for it", kNone, false, 0, krgui::kRefreshBitmapID, false},
      {"disabled and checked without a picture for it", kNone, false, 1, krgui::kRefreshBitmapID, false},
      {"disabled with a negative picture", -5, false, 1, krgui::kRefreshBitmapID, false},
  };
  for (const Row& row : rows) {
    ToolBarButton& button = Make(row.disabledBitmap);
    button.setEnabled(row.isEnabled);
    button.SetChecked(row.checked);

    EXPECT_EQ(button.GetChecked(), row.checked) << row.name;
    EXPECT_EQ(Draw(button),
              Expect({0, 0, kSide, kSide}, GetColour(SystemColour::ButtonFace), row.bitmap, {4, 4}, row.isFramed))
        << row.name;
  }
}

TEST_F(ToolBarButtons, White_IsTransparent) {
  ToolBarButton button(static_cast<std::uint16_t>(krgui::kErrorBitmapID), kNone, &mWindow);
  button.resize(16, 16);
  const QImage page = Draw(button);

  const QPoint mark = QPointF(QPointF(7.5, 6.5) * page.devicePixelRatio()).toPoint();
  EXPECT_EQ(page.pixelColor(mark), GetColour(SystemColour::ButtonFace));
}

TEST_F(ToolBarButtons, Strip_IsDrawnByItsFirstSixteenPixels) {
  ToolBarButton button(static_cast<std::uint16_t>(krgui::kToolsBitmapID), kNone, &mWindow);
  button.resize(64, 32);

  EXPECT_EQ(Draw(button),
            Expect({0, 0, 64, 32}, GetColour(SystemColour::ButtonFace), krgui::kOptionsBitmapID, {24, 8}, false));
}

TEST_F(ToolBarButtons, DarkTheme_HasPicturesForDarkGrounds) {
  ToolBarButton& button = Make(kNone);
  QPalette palette = mWindow.palette();
  palette.setColor(QPalette::Window, QColor(0x2B, 0x2E, 0x33));
  mWindow.setPalette(palette);
  QImage expected = Expect({0, 0, kSide, kSide}, QColor(0x2B, 0x2E, 0x33), kNone, {}, false);
  {
    QPainter painter(&expected);
    painter.drawImage(4, 4,
                      krgui::LoadBitmap(krgui::kRefreshBitmapID, expected.devicePixelRatio(), BitmapGround::Dark));
  }

  EXPECT_EQ(Draw(button), expected);
}

TEST_F(ToolBarButtons, Redraw_HappensAtOnce) {
  ToolBarButton& button = Make(kNone);
  Show();
  PaintCounter counter(button);

  button.RedrawNow();

  EXPECT_EQ(counter.mCount, 1);
}

TEST_F(ToolBarButtons, MovesOfTheMouse_DoNotRedraw) {
  ToolBarButton& button = Make(kNone);
  button.setMouseTracking(true);
  Show();
  QTest::mouseMove(&button, {5, 5});
  QApplication::processEvents();
  PaintCounter counter(button);

  for (int x = 6; x < 15; ++x)
    QTest::mouseMove(&button, {x, 5});
  QApplication::processEvents();

  EXPECT_EQ(counter.mCount, 0);
}

TEST_F(ToolBarButtons, MoveAwayWithTheButtonHeld_DoesNotRedraw) {
  ToolBarButton& button = Make(kNone);
  Show();
  QTest::mousePress(&button, Qt::LeftButton);
  QApplication::processEvents();
  PaintCounter counter(button);

  const QPointF outside(100, 60);
  QMouseEvent move(QEvent::MouseMove, outside, button.mapToGlobal(outside), Qt::NoButton, Qt::LeftButton,
                   Qt::NoModifier);
  QApplication::sendEvent(&button, &move);
  QApplication::processEvents();

  EXPECT_EQ(counter.mCount, 0);
  EXPECT_TRUE(move.isAccepted()) << "the move is not for the window behind the button";
  QTest::mouseRelease(&button, Qt::LeftButton, {}, {100, 60});
}

TEST_F(ToolBarButtons, MouseThatComesAndGoes_ChangesTheTintWhenTheOwnerRedraws) {
  ToolBarButton& button = Make(kNone);
  Show();
  PaintCounter counter(button);

  QTest::mouseMove(&button, {10, 10});
  QApplication::processEvents();
  EXPECT_EQ(counter.mCount, 0);
  button.RedrawNow();
  EXPECT_EQ(counter.mCount, 1);
  EXPECT_EQ(button.grab().toImage().pixelColor(0, 0), GetColour(SystemColour::GradientActiveCaption));

  counter.mCount = 0;
  QTest::mouseMove(&mWindow, {150, 80});
  QApplication::processEvents();
  EXPECT_EQ(counter.mCount, 0);
  button.RedrawNow();
  EXPECT_EQ(button.grab().toImage().pixelColor(0, 0), GetColour(SystemColour::ButtonFace));
}

TEST_F(ToolBarButtons, MouseAndSpace_PressIt) {
  ToolBarButton& button = Make(kNone);
  Show();
  int clicks = 0;
  QObject::connect(&button, &QAbstractButton::clicked, [&clicks] { ++clicks; });

  QTest::mouseClick(&button, Qt::LeftButton);
  EXPECT_EQ(clicks, 1);
  button.setFocus();
  QTest::keyClick(&button, Qt::Key_Space);
  EXPECT_EQ(clicks, 2);
  QTest::mousePress(&button, Qt::LeftButton);
  QTest::mouseMove(&button, {100, 60});
  QTest::mouseRelease(&button, Qt::LeftButton, {}, {100, 60});
  EXPECT_EQ(clicks, 2) << "let go beside the button";
  button.setEnabled(false);
  QTest::mouseClick(&button, Qt::LeftButton);
  EXPECT_EQ(clicks, 2) << "disabled";
}

TEST_F(ToolBarButtons, Focus_IsSeenWhereTheKeyboardBroughtIt) {
  ToolBarButton& button = Make(kNone);
  ToolBarButton& other = Make(kNone);
  other.move(60, 10);
  Show();
  other.setFocus();
  const QImage without = button.grab().toImage();

  button.setFocus(Qt::TabFocusReason);
  EXPECT_NE(button.grab().toImage(), without);
  other.setFocus();
  EXPECT_EQ(button.grab().toImage(), without);
  button.setFocus(Qt::MouseFocusReason);
  EXPECT_EQ(button.grab().toImage(), without);
}

TEST_F(ToolBarButtons, AccessibleName_IsTheTooltipUnlessThereIsOne) {
  ToolBarButton& button = Make(kNone);
  button.setToolTip("Refresh");
  ToolBarButton& named = Make(kNone);
  named.setAccessibleName("Read again");
  named.setToolTip("Refresh");

  EXPECT_EQ(QAccessible::queryAccessibleInterface(&button)->text(QAccessible::Name), "Refresh");
  EXPECT_EQ(QAccessible::queryAccessibleInterface(&named)->text(QAccessible::Name), "Read again");
}
