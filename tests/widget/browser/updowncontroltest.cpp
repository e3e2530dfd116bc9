// The up-down control by itself: its buttons, what it tells, and whose focus it leaves alone.

#include "browser/updowncontrol.h"
#include "windowwait.h"

#include <QAccessible>
#include <QLineEdit>
#include <QSignalSpy>
#include <QTest>
#include <QToolButton>

#include <gtest/gtest.h>

namespace krgui {

namespace {

class UpDownControlTest : public testing::Test {
protected:
  UpDownControlTest() {
    window.resize(200, 60);
    editBox->setGeometry(0, 0, 100, 20);
    control->setGeometry(100, 0, 16, 21);
    control->SetEditBox(*editBox);
    control->SetFeatureName("Width");
    window.show();
    window.activateWindow();
    EXPECT_TRUE(krtest::AwaitActive(&window));
    editBox->setFocus();
  }
  QToolButton* Button(const char* aName) { return control->findChild<QToolButton*>(QLatin1String(aName)); }

  QWidget window;
  QLineEdit* editBox = new QLineEdit(&window);
  UpDownControl* control = new UpDownControl(&window);
  QSignalSpy stepped{control, &UpDownControl::Stepped};
  QSignalSpy released{control, &UpDownControl::Released};
};

TEST_F(UpDownControlTest, Press_StepsAtOnceAndReleaseTellsTheEnd) {
  QTest::mousePress(Button("up"), Qt::LeftButton);
  EXPECT_EQ(stepped.count(), 1);
  EXPECT_TRUE(stepped.front().front().toBool());
  EXPECT_EQ(released.count(), 0);

  QTest::mouseRelease(Button("up"), Qt::LeftButton);

  EXPECT_EQ(stepped.count(), 1);
  EXPECT_EQ(released.count(), 1);
}

TEST_F(UpDownControlTest, LowerButton_StepsDown) {
  QTest::mouseClick(Button("down"), Qt::LeftButton);

  ASSERT_EQ(stepped.count(), 1);
  EXPECT_FALSE(stepped.front().front().toBool());
}

TEST_F(UpDownControlTest, HeldButton_StepsAgainWithoutTellingAnEnd) {
  Button("up")->setAutoRepeatDelay(1);
  Button("up")->setAutoRepeatInterval(1);
  QTest::mousePress(Button("up"), Qt::LeftButton);

  EXPECT_TRUE(krtest::AwaitCondition([this] { return stepped.count() >= 5; }));
  EXPECT_EQ(released.count(), 0);
  QTest::mouseRelease(Button("up"), Qt::LeftButton);
  EXPECT_EQ(released.count(), 1);
}

TEST_F(UpDownControlTest, Clicks_LeaveTheFocusInTheEditBox) {
  QTest::mouseClick(Button("up"), Qt::LeftButton);
  EXPECT_TRUE(editBox->hasFocus());
  QTest::mouseClick(control, Qt::LeftButton, {}, QPoint(1, 1));
  EXPECT_TRUE(editBox->hasFocus());
}

TEST_F(UpDownControlTest, Buttons_ShareTheHeight) {
  EXPECT_EQ(Button("up")->geometry(), QRect(0, 0, 16, 10));
  EXPECT_EQ(Button("down")->geometry(), QRect(0, 10, 16, 11));
}

TEST_F(UpDownControlTest, Buttons_AreNamedAndPressedByAssistiveTechnology) {
  QAccessibleInterface* up = QAccessible::queryAccessibleInterface(Button("up"));
  ASSERT_NE(up, nullptr);
  EXPECT_EQ(up->text(QAccessible::Name), "Increase Width");
  EXPECT_EQ(up->role(), QAccessible::Button);
  EXPECT_EQ(QAccessible::queryAccessibleInterface(Button("down"))->text(QAccessible::Name), "Decrease Width");

  up->actionInterface()->doAction(QAccessibleActionInterface::pressAction());

  EXPECT_TRUE(krtest::AwaitCondition([this] { return released.count() == 1; }));
  EXPECT_EQ(stepped.count(), 1);
}

} // namespace

} // namespace krgui
