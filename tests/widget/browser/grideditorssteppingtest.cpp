// The up-down control, its keys and the wheel.

#include "editorsfixture.h"
#include "windowwait.h"

namespace krgui {

namespace {

class SteppingTest : public EditorsTest {
protected:
  void PressArrow(const char* aName) { QTest::mousePress(Arrow(aName), Qt::LeftButton); }
  void ReleaseArrow(const char* aName) { QTest::mouseRelease(Arrow(aName), Qt::LeftButton); }
  void ClickArrow(const char* aName) { QTest::mouseClick(Arrow(aName), Qt::LeftButton); }
  /// Turns the wheel in the middle of the edit box; true when the edit box took it.
  bool TurnWheel(int aDelta) {
    const QPointF center = NumberBox()->rect().center();
    QWheelEvent event(center, NumberBox()->mapToGlobal(center), {}, QPoint(0, aDelta), Qt::NoButton, {},
                      Qt::NoScrollPhase, false);
    QApplication::sendEvent(NumberBox(), &event);
    return event.isAccepted();
  }
};

TEST_F(SteppingTest, ArrowClicked_StepsTheTextAndWritesWhenTheEditEnds) {
  Select("OffsetX");
  ClickArrow("up");
  ClickArrow("up");
  ClickArrow("down");

  EXPECT_EQ(NumberBox()->text(), "1");
  EXPECT_EQ(camera.port.CountWrites(), 0U);
  EXPECT_TRUE(NumberBox()->hasFocus()) << "So that the end of the edit is noticed.";
  elsewhere->setFocus();
  Pump();
  EXPECT_EQ(Integer("OffsetX"), 1);
}

TEST_F(SteppingTest, ArrowClicked_LeavesTheFocusInTheEditBox) {
  Enter("OffsetX");
  ClickArrow("up");
  Pump();

  ASSERT_NE(NumberBox(), nullptr);
  EXPECT_TRUE(NumberBox()->hasFocus());
  EXPECT_EQ(NumberBox()->text(), "1");
}

TEST_F(SteppingTest, StepsAtTheEnd_AreClampedToTheIncrement) {
  SetRegister(0x100, {9});
  Select("BinningHorizontal");
  ClickArrow("up");
  EXPECT_EQ(NumberBox()->text(), "9");
  NumberBox()->setText("10");
  ClickArrow("down");
  EXPECT_EQ(NumberBox()->text(), "6");
}

TEST_F(SteppingTest, HeldArrow_AcceleratesAndReleasingResets) {
  Select("OffsetX");
  QStringList texts;
  QObject::connect(NumberBox(), &QLineEdit::textChanged, [&](const QString& aText) { texts.append(aText); });
  Arrow("up")->setAutoRepeatDelay(1);
  Arrow("up")->setAutoRepeatInterval(1);

  PressArrow("up");
  ASSERT_TRUE(krtest::AwaitCondition([&] { return texts.size() >= 11; }));
  ReleaseArrow("up");

  EXPECT_EQ(texts.mid(0, 11), QStringList({"1", "2", "3", "4", "5", "6", "7", "8", "9", "12", "16"}));
  NumberBox()->setText("100");
  ClickArrow("up");
  EXPECT_EQ(NumberBox()->text(), "101");
  EXPECT_EQ(camera.port.CountWrites(), 0U);
}

TEST_F(SteppingTest, UpAndDownKeys_StepAndTheirReleaseResets) {
  Enter("OffsetX");
  for (int press = 0; press < 12; ++press) {
    QTest::keyClick(NumberBox(), Qt::Key_Up);
  }
  EXPECT_EQ(NumberBox()->text(), "12");
  QTest::keyClick(NumberBox(), Qt::Key_Down);
  EXPECT_EQ(NumberBox()->text(), "11");
  EXPECT_TRUE(NumberBox()->hasFocus());
}

TEST_F(SteppingTest, HeldUpKey_Accelerates) {
  Enter("OffsetX");
  for (int press = 0; press < 10; ++press) {
    QTest::keyPress(NumberBox(), Qt::Key_Up);
  }
  EXPECT_EQ(NumberBox()->text(), "12");
  QTest::keyRelease(NumberBox(), Qt::Key_Up);
  QTest::keyClick(NumberBox(), Qt::Key_Up);
  EXPECT_EQ(NumberBox()->text(), "13");
}

TEST_F(SteppingTest, KeysInAFloat_StepNothingAndMoveNoSelection) {
  Enter("ExposureTime");
  QTest::keyClick(NumberBox(), Qt::Key_Down);
  Pump();

  ASSERT_NE(NumberBox(), nullptr);
  EXPECT_EQ(NumberBox()->text(), "0");
  EXPECT_EQ(grid->GetSelected(), Item("ExposureTime"));
}

TEST_F(SteppingTest, Wheel_StepsAnEditBoxInUse) {
  Enter("OffsetX");
  QTest::mouseClick(NumberBox(), Qt::LeftButton);

  EXPECT_TRUE(TurnWheel(120));
  EXPECT_TRUE(TurnWheel(60));
  EXPECT_EQ(NumberBox()->text(), "1");
  EXPECT_TRUE(TurnWheel(60));
  EXPECT_EQ(NumberBox()->text(), "2");
  EXPECT_TRUE(TurnWheel(-120));
  EXPECT_EQ(NumberBox()->text(), "1");
}

TEST_F(SteppingTest, WheelPastAnEditBox_ScrollsTheGrid) {
  Select("OffsetX");

  EXPECT_FALSE(TurnWheel(120));
  EXPECT_EQ(NumberBox()->text(), "0");
}

TEST_F(SteppingTest, TextThatIsNoNumber_IsNotStepped) {
  Enter("OffsetX");
  QTest::keyClicks(NumberBox(), "x");
  ClickArrow("up");

  EXPECT_EQ(NumberBox()->text(), "x");
}

TEST_F(SteppingTest, Hexadecimal_IsSteppedAsHexadecimal) {
  SetRegister(0x104, {0x0F});
  Select("LineMask");
  ClickArrow("up");

  EXPECT_EQ(NumberBox()->text(), "0x10");
}

} // namespace

} // namespace krgui
