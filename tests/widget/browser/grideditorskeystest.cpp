// Keys that go down in one widget and are held, or let go, in another: each acts where it went down alone.

#include "editorsfixture.h"
#include "windowwait.h"

#include <QWheelEvent>

namespace krgui {

namespace {

/// A key that is held comes again, then goes up.
void HoldAndRelease(QWidget* aWidget, Qt::Key aKey, Qt::KeyboardModifiers aModifiers = {}) {
  QKeyEvent repeated(QEvent::KeyPress, aKey, aModifiers, QString(), true);
  QApplication::sendEvent(aWidget, &repeated);
  QTest::keyRelease(aWidget, aKey, aModifiers);
}

TEST_F(EditorsTest, EnterHeldFromAnEdit_AnswersNoMessageBox) {
  Enter("OffsetX");
  NumberBox()->selectAll();
  QTest::keyClicks(NumberBox(), "5000");
  bool stayed = false;
  DuringNextModalLoop([&](QWidget& aBox) {
    HoldAndRelease(aBox.focusWidget(), Qt::Key_Return);
    QCoreApplication::processEvents();
    stayed = aBox.isVisible();
    QTest::keyClick(&aBox, Qt::Key_Escape);
  });

  QTest::keyPress(NumberBox(), Qt::Key_Return);
  Pump();
  ActivateAgain();

  EXPECT_TRUE(stayed);
  EXPECT_TRUE(grid->hasFocus());
}

TEST_F(EditorsTest, KeyThatAnsweredTheMessageBox_DoesNothingInTheGrid) {
  for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Escape}) {
    Enter("OffsetX");
    DuringNextModalLoop([&](QWidget& aBox) { QTest::keyPress(aBox.focusWidget(), key); });
    Type(NumberBox(), "5000", Qt::Key_Return);
    Pump();
    ActivateAgain();
    ASSERT_TRUE(grid->hasFocus());

    HoldAndRelease(grid, key);
    Pump();

    EXPECT_TRUE(grid->hasFocus());
    ASSERT_NE(NumberBox(), nullptr);
    EXPECT_EQ(NumberBox()->text(), "0");
  }
}

TEST_F(EditorsTest, KeyThatOpensTheList_IsHeldWithoutClosingItAndTheOtherWayRound) {
  const struct {
    Qt::Key key;
    Qt::KeyboardModifiers modifiers;
  } rows[] = {{Qt::Key_F4, {}}, {Qt::Key_Down, Qt::AltModifier}};
  Enter("PixelFormat");
  for (const auto& row : rows) {
    QTest::keyPress(Combo(), row.key, row.modifiers);
    ASSERT_TRUE(Combo()->IsListOpen());
    HoldAndRelease(&Combo()->GetList(), row.key, row.modifiers);
    EXPECT_TRUE(Combo()->IsListOpen());

    QTest::keyPress(&Combo()->GetList(), row.key, row.modifiers);
    ActivateAgain();
    ASSERT_NE(Combo(), nullptr);
    EXPECT_FALSE(Combo()->IsListOpen());
    HoldAndRelease(Combo(), row.key, row.modifiers);
    EXPECT_FALSE(Combo()->IsListOpen());
    EXPECT_EQ(Combo()->currentText(), "Mono8");
  }
}

TEST_F(EditorsTest, KeyThatEndedTheList_EndsNoEdit) {
  Enter("PixelFormat");
  QTest::keyClick(Combo(), Qt::Key_F4);
  QTest::keyPress(&Combo()->GetList(), Qt::Key_Escape);
  ActivateAgain();

  HoldAndRelease(Combo(), Qt::Key_Escape);
  Pump();

  ASSERT_NE(Combo(), nullptr);
  EXPECT_TRUE(Combo()->hasFocus());
}

TEST_F(EditorsTest, EnterThatWentIntoTheEditor_EndsNothingThereAndIsNoUse) {
  Select("OffsetX");
  QTest::keyPress(grid, Qt::Key_Return);
  Pump();
  ASSERT_NE(NumberBox(), nullptr);

  HoldAndRelease(NumberBox(), Qt::Key_Return);
  Pump();
  const QPoint center = NumberBox()->rect().center();
  QWheelEvent wheel(center, NumberBox()->mapToGlobal(center), {}, QPoint(0, 120), Qt::NoButton, {}, Qt::NoScrollPhase,
                    false);
  QApplication::sendEvent(NumberBox(), &wheel);

  EXPECT_TRUE(NumberBox()->hasFocus());
  EXPECT_EQ(NumberBox()->text(), "0") << "The wheel scrolls past what nobody works in.";
}

TEST_F(EditorsTest, SpaceReleasedInTheButtonAlone_ExecutesNothing) {
  Select("DeviceReset");
  QTest::keyPress(grid, Qt::Key_Space);
  Button()->setFocus();

  HoldAndRelease(Button(), Qt::Key_Space);
  Pump();

  EXPECT_EQ(camera.port.CountWrites(), 0U);
}

TEST_F(EditorsTest, ArrowReleasedInADialog_StepsSlowlyAgain) {
  Enter("OffsetX");
  for (int press = 0; press < 9; ++press) {
    QTest::keyPress(NumberBox(), Qt::Key_Up);
  }
  ASSERT_EQ(NumberBox()->text(), "9");
  QDialog dialog(window.get());
  dialog.open();
  ASSERT_TRUE(krtest::AwaitActive(&dialog));
  QTest::keyRelease(&dialog, Qt::Key_Up);
  dialog.close();
  ActivateAgain();

  QTest::keyPress(NumberBox(), Qt::Key_Up);

  EXPECT_EQ(NumberBox()->text(), "10");
}

} // namespace

} // namespace krgui
