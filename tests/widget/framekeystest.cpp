// Enter, Escape, the close box and the focus: what a window does with them in each mode.

#include "testwnd.h"
#include "windowwait.h"

#include <QDialog>
#include <QKeyEvent>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTimer>

#include <gtest/gtest.h>

namespace krgui {

namespace {

using Code = KrResult::Code;

constexpr int kOKButton = 1;
constexpr int kFirstControl = 1049; ///< Of the device finder, which is the default one.
constexpr int kCancelButton = 2;

QPushButton& GetButton(TestWnd& aWindow, int aID) {
  return *qobject_cast<QPushButton*>(aWindow.GetControl(aID));
}

TEST(WndKeys, EscapeInAModalWindow_Cancels) {
  TestWnd window;
  QTimer::singleShot(0, qApp, [&] { QTest::keyClick(window.GetWidget(), Qt::Key_Escape); });

  EXPECT_EQ(window.ShowModal(0).GetCodeNumber(), 16386U);
}

TEST(WndKeys, EnterInAModalWindow_Accepts) {
  TestWnd window;
  QTimer::singleShot(0, qApp, [&] { QTest::keyClick(window.GetWidget(), Qt::Key_Enter, Qt::KeypadModifier); });

  EXPECT_EQ(window.ShowModal(0).GetCodeNumber(), 0U);
  EXPECT_EQ(window.record->accepts, 1);
}

TEST(WndKeys, LetterWithAltThatIsNobodysMnemonic_IsNotTyped) {
  TestWnd window;
  ASSERT_TRUE(window.ShowModeless(0).IsOK());
  auto* field = new QLineEdit(window.GetWidget());
  auto* text = new QPlainTextEdit(window.GetWidget());
  field->show();
  text->show();

  for (QWidget* control : {static_cast<QWidget*>(field), static_cast<QWidget*>(text)}) {
    QTest::keyClick(control, Qt::Key_T, Qt::AltModifier);
    QTest::keyClick(control, Qt::Key_T, Qt::AltModifier | Qt::ShiftModifier);
    QTest::keyClicks(control, "A");
    QTest::keyClick(control, Qt::Key_At, Qt::GroupSwitchModifier);
  }

  EXPECT_EQ(field->text(), "A@");
  EXPECT_EQ(text->toPlainText(), "A@");
}

TEST(WndKeys, LetterWithAltInAnotherWindow_IsItsOwnBusiness) {
  TestWnd window;
  ASSERT_TRUE(window.ShowModeless(0).IsOK());
  QLineEdit field;
  field.show();

  QTest::keyClick(&field, Qt::Key_T, Qt::AltModifier);

  EXPECT_EQ(field.text().toLower(), "t");
}

TEST(WndKeys, CloseBoxOfAModalWindow_Cancels) {
  TestWnd window;
  QTimer::singleShot(0, qApp, [&] { window.GetWidget()->windowHandle()->close(); });

  EXPECT_EQ(window.ShowModal(0).GetCodeNumber(), 16386U);
  EXPECT_EQ(window.record->cancels, 1);
}

TEST(WndKeys, EscapeInAModelessWindow_ClosesIt) {
  TestWnd window;
  ASSERT_TRUE(window.ShowModeless(0).IsOK());

  QTest::keyClick(window.GetWidget(), Qt::Key_Escape);

  EXPECT_FALSE(window.IsOpen());
  EXPECT_EQ(window.record->destroys, 1);
}

TEST(WndKeys, EnterInAModelessWindow_ClosesIt) {
  TestWnd window;
  ASSERT_TRUE(window.ShowModeless(0).IsOK());

  QTest::keyClick(window.GetWidget(), Qt::Key_Return);

  EXPECT_FALSE(window.IsOpen());
  EXPECT_EQ(window.record->accepts, 1);
  EXPECT_EQ(window.record->destroys, 1);
}

TEST(WndKeys, CloseBoxOfAModelessWindow_ClosesItAndLetsTheApplicationQuit) {
  TestWnd window;
  ASSERT_TRUE(window.ShowModeless(0).IsOK());

  const bool wasAccepted = window.GetWidget()->close();

  EXPECT_TRUE(wasAccepted);
  EXPECT_FALSE(window.IsOpen());
}

TEST(WndKeys, CloseBoxThatTheWindowRefuses_KeepsIt) {
  TestWnd window;
  window.onCancel = [] {};
  ASSERT_TRUE(window.ShowModeless(0).IsOK());

  const bool wasAccepted = window.GetWidget()->close();

  EXPECT_FALSE(wasAccepted);
  EXPECT_TRUE(window.GetWidget()->isVisible());
}

class ChildKeys : public testing::TestWithParam<Qt::Key> {};

TEST_P(ChildKeys, InAChild_DoNotHideItAndGoOnToTheWindowAround) {
  struct Host : QWidget {
    void keyPressEvent(QKeyEvent* aEvent) override { keys.append(aEvent->key()); }
    QList<int> keys;
  } parent;
  parent.show();
  TestWnd window;
  ASSERT_TRUE(window.CreateIn(&parent).IsOK());

  QTest::keyClick(window.GetWidget(), GetParam());

  EXPECT_TRUE(window.GetWidget()->isVisible());
  EXPECT_EQ(window.record->accepts + window.record->cancels, 1);
  EXPECT_EQ(parent.keys, QList<int>{GetParam()});
}

INSTANTIATE_TEST_SUITE_P(EnterAndEscape, ChildKeys, testing::Values(Qt::Key_Return, Qt::Key_Enter, Qt::Key_Escape));

TEST(WndKeys, ClosingAChildsWidget_IsRefused) {
  QWidget parent;
  parent.show();
  TestWnd window;
  ASSERT_TRUE(window.CreateIn(&parent).IsOK());

  EXPECT_FALSE(window.GetWidget()->close());

  EXPECT_TRUE(window.GetWidget()->isVisible());
}

TEST(WndKeys, EnterWithModifiers_IsNotOK) {
  TestWnd window;
  ASSERT_TRUE(window.ShowModeless(0).IsOK());

  QTest::keyClick(window.GetWidget(), Qt::Key_Return, Qt::ControlModifier);
  QTest::keyClick(window.GetWidget(), Qt::Key_Escape, Qt::ShiftModifier);

  EXPECT_EQ(window.record->accepts + window.record->cancels, 0);
}

TEST(WndKeys, EnterThatAControlTakes_IsNotOK) {
  TestWnd window;
  QPlainTextEdit* edit = nullptr;
  window.onInitDialog = [&] { edit = new QPlainTextEdit(window.GetWidget()); };
  ASSERT_TRUE(window.ShowModeless(0).IsOK());

  QTest::keyClick(edit, Qt::Key_Return);

  EXPECT_EQ(window.record->accepts, 0);
  EXPECT_EQ(edit->toPlainText(), QStringLiteral("\n"));
}

TEST(WndKeys, EnterInALine_IsOK) {
  TestWnd window;
  window.onOK = [] {};
  QLineEdit* line = nullptr;
  window.onInitDialog = [&] { line = new QLineEdit(window.GetWidget()); };
  ASSERT_TRUE(window.ShowModeless(0).IsOK());

  QTest::keyClick(line, Qt::Key_Return);

  EXPECT_EQ(window.record->accepts, 1);
}

TEST(WndKeys, ButtonsWithIDs1And2_AcceptAndCancel) {
  TestWnd window(kDeviceFinderTraits);
  window.onOK = window.onCancel = [] {};
  ASSERT_TRUE(window.ShowModeless(0).IsOK());

  GetButton(window, kOKButton).click();
  GetButton(window, kCancelButton).click();

  EXPECT_EQ(window.record->accepts, 1);
  EXPECT_EQ(window.record->cancels, 1);
}

TEST(WndKeys, EnterOnTheCancelButton_Cancels) {
  TestWnd window(kDeviceFinderTraits);
  window.onOK = window.onCancel = [] {};
  ASSERT_TRUE(window.ShowModeless(0).IsOK());
  window.GetWidget()->activateWindow();
  ASSERT_TRUE(krtest::AwaitActive(window.GetWidget()));
  GetButton(window, kCancelButton).setFocus();

  QTest::keyClick(&GetButton(window, kCancelButton), Qt::Key_Return);

  EXPECT_EQ(window.record->accepts, 0);
  EXPECT_EQ(window.record->cancels, 1);
}

TEST(WndKeys, EnterWhileTheOKButtonIsDisabled_DoesNothing) {
  TestWnd window(kDeviceFinderTraits);
  QLineEdit* line = nullptr;
  window.onInitDialog = [&] { line = new QLineEdit(window.GetWidget()); };
  ASSERT_TRUE(window.ShowModeless(0).IsOK());
  GetButton(window, kOKButton).setEnabled(false);

  QTest::keyClick(line, Qt::Key_Return);

  EXPECT_EQ(window.record->accepts, 0);
}

TEST(WndKeys, OnlyTheButtonWithID1_IsDefault) {
  TestWnd window(kDeviceFinderTraits);
  QPushButton* other = nullptr;
  window.onInitDialog = [&] { other = new QPushButton(QStringLiteral("Other"), window.GetWidget()); };
  ASSERT_TRUE(window.ShowModeless(0).IsOK());

  other->setFocus();

  EXPECT_TRUE(GetButton(window, kOKButton).isDefault());
  EXPECT_FALSE(GetButton(window, kCancelButton).isDefault());
  EXPECT_FALSE(other->isDefault());
  EXPECT_FALSE(other->autoDefault());
}

TEST(WndKeys, EnterHeldOnAButton_PressesItOnceWhetherOrNotItsRepeatsAreMarked) {
  for (const bool isMarked : {true, false}) {
    TestWnd window(kDeviceFinderTraits);
    window.onOK = window.onCancel = [] {};
    ASSERT_TRUE(window.ShowModeless(0).IsOK());
    window.GetWidget()->activateWindow();
    ASSERT_TRUE(krtest::AwaitActive(window.GetWidget()));
    GetButton(window, kCancelButton).setFocus();
    const auto giveKey = [&](QEvent::Type aType, bool aIsRepeat, quint64 aTimeMs) {
      QKeyEvent event(aType, Qt::Key_Return, Qt::NoModifier, QStringLiteral("\r"), aIsRepeat && isMarked);
      event.setTimestamp(aTimeMs);
      QCoreApplication::sendEvent(&GetButton(window, kCancelButton), &event);
    };

    giveKey(QEvent::KeyPress, false, 1000);
    for (quint64 time = 1500; time < 1700; time += 40) {
      giveKey(QEvent::KeyRelease, true, time);
      giveKey(QEvent::KeyPress, true, time);
    }
    EXPECT_EQ(window.record->cancels, 1) << isMarked;
    giveKey(QEvent::KeyRelease, false, 1800);
    giveKey(QEvent::KeyPress, false, 2000);

    EXPECT_EQ(window.record->cancels, 2) << isMarked;
    EXPECT_EQ(window.record->accepts, 0) << isMarked;
  }
}

TEST(WndKeys, RepeatedRelease_IsNoRelease) {
  QWidget parent;
  TestWnd window;
  ASSERT_TRUE(window.CreateIn(&parent).IsOK());
  QKeyEvent repeated(QEvent::KeyRelease, Qt::Key_A, Qt::NoModifier, QStringLiteral("a"), true);
  QKeyEvent final(QEvent::KeyRelease, Qt::Key_A, Qt::NoModifier, QStringLiteral("a"), false);

  QCoreApplication::sendEvent(window.GetWidget(), &repeated);
  QCoreApplication::sendEvent(window.GetWidget(), &final);

  // Accepted is swallowed; the real one goes on to the window around.
  EXPECT_TRUE(repeated.isAccepted());
  EXPECT_FALSE(final.isAccepted());
}

TEST(WndKeys, Opened_GivesTheFocusToTheDefaultControl) {
  TestWnd window(kDeviceFinderTraits);

  ASSERT_TRUE(window.ShowModeless(0).IsOK());

  EXPECT_EQ(window.GetWidget()->focusWidget(), window.GetControl(kFirstControl));
}

TEST(WndKeys, OpenedAsAChild_DoesNotTakeTheFocusFromTheWindowAround) {
  QWidget parent;
  auto* line = new QLineEdit(&parent);
  line->setFocus();
  parent.show();
  TestWnd window(kDeviceFinderTraits);

  ASSERT_TRUE(window.CreateIn(&parent).IsOK());

  EXPECT_EQ(parent.focusWidget(), line);
}

} // namespace

} // namespace krgui
