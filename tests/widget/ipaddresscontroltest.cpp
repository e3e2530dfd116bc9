// The IP address control, typed into, clicked and pasted into as a person does. What each key does is tested with the
// rules; here is what the control adds: focus, clipboard, signals, size, and what screen readers are told.

#include "platform/ipaddresscontrol.h"
#include "windowwait.h"

#include <QAccessible>
#include <QApplication>
#include <QClipboard>
#include <QLineEdit>
#include <QMenu>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>
#include <QVBoxLayout>

#include <gtest/gtest.h>

#include <memory>

namespace krgui {

namespace {

class IPAddressControlTest : public testing::Test {
protected:
  IPAddressControlTest() {
    auto* layout = new QVBoxLayout(&window);
    layout->addWidget(&before);
    layout->addWidget(control);
    layout->addWidget(&after);
    QWidget::setTabOrder(&before, control);
    QWidget::setTabOrder(control, &after);
    control->setAccessibleName(QStringLiteral("Subnet Mask"));
    window.show();
    window.activateWindow();
    EXPECT_TRUE(krtest::AwaitActive(&window));
    fields = control->findChildren<QLineEdit*>();
    control->setFocus();
  }

  static void Type(const char* aText) {
    for (const char* character = aText; *character != '\0'; ++character) {
      QTest::keyClick(QApplication::focusWidget(), *character);
    }
  }
  static void Press(Qt::Key aKey, Qt::KeyboardModifiers aModifiers = Qt::NoModifier) {
    QTest::keyClick(QApplication::focusWidget(), aKey, aModifiers);
  }
  int GetFocusedField() const {
    return static_cast<int>(fields.indexOf(qobject_cast<QLineEdit*>(QApplication::focusWidget())));
  }
  std::string GetText() const { return control->GetText().toStdString(); }

  QWidget window;
  QPushButton before;
  IPAddressControl* control = new IPAddressControl(&window);
  QPushButton after;
  QList<QLineEdit*> fields;
};

TEST_F(IPAddressControlTest, TypedAddress_IsItsValue) {
  Type("192.168.1.20");

  EXPECT_EQ(GetText(), "192.168.1.20");
  EXPECT_EQ(control->GetAddress(), 0xC0A80114U);
  EXPECT_EQ(GetFocusedField(), 3);
}

TEST_F(IPAddressControlTest, NothingTyped_IsZeroAndEmpty) {
  EXPECT_EQ(control->GetAddress(), 0U);
  EXPECT_EQ(GetText(), "...");
}

TEST_F(IPAddressControlTest, ThreeDigitsAndBackspace_MoveTheFocusThereAndBack) {
  Type("192");
  EXPECT_EQ(GetFocusedField(), 1);

  Press(Qt::Key_Backspace);

  EXPECT_EQ(GetFocusedField(), 0);
  EXPECT_EQ(fields[0]->cursorPosition(), 3);
  EXPECT_EQ(GetText(), "192...");
}

TEST_F(IPAddressControlTest, KeypadAndArrows_WorkAsTheirPlainKeys) {
  QTest::keyClick(QApplication::focusWidget(), Qt::Key_1, Qt::KeypadModifier);
  QTest::keyClick(QApplication::focusWidget(), Qt::Key_Period, Qt::KeypadModifier);
  Type("2");
  Press(Qt::Key_Home);
  EXPECT_EQ(GetFocusedField(), 0);
  Press(Qt::Key_Right, Qt::ControlModifier);
  EXPECT_EQ(GetFocusedField(), 1);
  EXPECT_EQ(fields[1]->selectedText(), QStringLiteral("2"));
  Press(Qt::Key_End);

  EXPECT_EQ(GetFocusedField(), 3);
  EXPECT_EQ(GetText(), "1.2..");
}

TEST_F(IPAddressControlTest, ShiftAndArrows_SelectInsideTheField) {
  Type("12");
  Press(Qt::Key_Left, Qt::ShiftModifier);

  EXPECT_EQ(fields[0]->selectedText(), QStringLiteral("2"));
  Type("7");
  EXPECT_EQ(GetText(), "17...");
}

TEST_F(IPAddressControlTest, SelectionMadeBackwards_IsReplacedByWhatIsTyped) {
  Type("123");
  Press(Qt::Key_Backspace);
  fields[0]->setSelection(3, -2);

  Type("9");

  EXPECT_EQ(GetText(), "19...");
}

// The focus.

TEST_F(IPAddressControlTest, FocusByTab_GoesToTheFirstFieldAndSelectsIt) {
  control->SetAddress(0x0A000005);
  before.setFocus();

  Press(Qt::Key_Tab);

  EXPECT_EQ(GetFocusedField(), 0);
  EXPECT_EQ(fields[0]->selectedText(), QStringLiteral("10"));
}

TEST_F(IPAddressControlTest, TabInAnyField_LeavesTheControl) {
  for (int field = 0; field < 4; ++field) {
    control->FocusField(field);
    Press(Qt::Key_Tab);
    EXPECT_EQ(QApplication::focusWidget(), &after) << field;

    control->FocusField(field);
    Press(Qt::Key_Backtab, Qt::ShiftModifier);
    EXPECT_EQ(QApplication::focusWidget(), &before) << field;
  }
}

TEST_F(IPAddressControlTest, Click_PutsTheCaretIntoTheFieldUnderIt) {
  control->SetAddress(0x0A000005);

  QTest::mouseClick(fields[2], Qt::LeftButton);

  EXPECT_EQ(GetFocusedField(), 2);
}

TEST_F(IPAddressControlTest, ClickBetweenFields_GoesToTheNearest) {
  QTest::mouseClick(control, Qt::LeftButton, {}, QPoint(control->width() - 1, 0));
  EXPECT_EQ(GetFocusedField(), 3);

  QTest::mouseClick(control, Qt::LeftButton, {}, QPoint(1, 1));
  EXPECT_EQ(GetFocusedField(), 0);
}

TEST_F(IPAddressControlTest, FieldsOutsideTheFour_AreIgnored) {
  control->FocusField(2);

  control->FocusField(-1);
  control->FocusField(4);
  control->ClearField(-1);
  control->ClearField(4);

  EXPECT_EQ(GetFocusedField(), 2);
}

TEST_F(IPAddressControlTest, ClearedField_IsEmptyAndCountsAsZero) {
  control->SetAddress(0xC0A80114);

  control->ClearField(3);

  EXPECT_EQ(GetText(), "192.168.1.");
  EXPECT_EQ(control->GetAddress(), 0xC0A80100U);
}

// The clipboard.

TEST_F(IPAddressControlTest, Paste_FillsAllFields) {
  QApplication::clipboard()->setText(QStringLiteral(" 192.168.1.20\n"));
  control->FocusField(2);

  Press(Qt::Key_V, Qt::ControlModifier);

  EXPECT_EQ(GetText(), "192.168.1.20");
}

TEST_F(IPAddressControlTest, PasteOfSomethingElse_ChangesNothing) {
  control->SetAddress(0x0A000005);
  QApplication::clipboard()->setText(QStringLiteral("<b>camera</b>"));

  Press(Qt::Key_V, Qt::ControlModifier);

  EXPECT_EQ(GetText(), "10.0.0.5");
}

TEST_F(IPAddressControlTest, Copy_GivesTheDottedText) {
  control->SetAddress(0x0A000005);

  Press(Qt::Key_C, Qt::ControlModifier);

  EXPECT_EQ(QApplication::clipboard()->text(), QStringLiteral("10.0.0.5"));
}

TEST_F(IPAddressControlTest, Cut_CopiesAndClears) {
  control->SetAddress(0x0A000005);

  Press(Qt::Key_X, Qt::ControlModifier);

  EXPECT_EQ(QApplication::clipboard()->text(), QStringLiteral("10.0.0.5"));
  EXPECT_EQ(GetText(), "...");
}

TEST_F(IPAddressControlTest, ContextMenu_CopiesPastesAndClears) {
  QApplication::clipboard()->setText(QStringLiteral("10.1.2.3"));
  const auto choose = [this](int aEntry) {
    QContextMenuEvent ask(QContextMenuEvent::Mouse, QPoint(2, 2), fields[1]->mapToGlobal(QPoint(2, 2)));
    QApplication::sendEvent(fields[1], &ask);
    auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
    ASSERT_NE(menu, nullptr);
    ASSERT_EQ(menu->actions().size(), 3);
    for (int step = 0; step <= aEntry; ++step) {
      QTest::keyClick(menu, Qt::Key_Down);
    }
    QTest::keyClick(menu, Qt::Key_Return);
  };

  choose(1);
  EXPECT_EQ(GetText(), "10.1.2.3");
  choose(2);
  EXPECT_EQ(GetText(), "...");
}

// Signals.

TEST_F(IPAddressControlTest, EveryChange_IsToldOnce) {
  const QSignalSpy changes(control, &IPAddressControl::Changed);

  Type("1");
  EXPECT_EQ(changes.count(), 1);
  Type("x");
  EXPECT_EQ(changes.count(), 1) << "nothing changed";
  Press(Qt::Key_Backspace);
  EXPECT_EQ(changes.count(), 2);
  control->SetAddress(0x0A000005);
  EXPECT_EQ(changes.count(), 3) << "four fields are one change";
  control->SetAddress(0x0A000005);
  EXPECT_EQ(changes.count(), 3);
  control->ClearField(0);
  EXPECT_EQ(changes.count(), 4);
  control->ClearField(0);
  EXPECT_EQ(changes.count(), 4);
}

TEST_F(IPAddressControlTest, SetAddressElsewhere_LeavesTheFocusAlone) {
  after.setFocus();

  control->SetAddress(0x0A000005);

  EXPECT_EQ(QApplication::focusWidget(), &after);
}

// Assistive technology.

TEST_F(IPAddressControlTest, EachField_HasItsNameAndTheError) {
  control->SetError(QStringLiteral("Invalid subnet mask."));

  for (int field = 0; field < 4; ++field) {
    QAccessibleInterface* accessible = QAccessible::queryAccessibleInterface(fields[field]);
    EXPECT_EQ(accessible->text(QAccessible::Name), QStringLiteral("Subnet Mask, field %1 of 4").arg(field + 1));
    EXPECT_EQ(accessible->text(QAccessible::Description), QStringLiteral("Invalid subnet mask."));
  }
}

TEST_F(IPAddressControlTest, TextSetByAssistiveTechnology_IsKeptToTheRules) {
  QAccessibleInterface* accessible = QAccessible::queryAccessibleInterface(fields[1]);

  accessible->setText(QAccessible::Value, QStringLiteral("9x99"));

  EXPECT_EQ(GetText(), ".255..");
}

TEST_F(IPAddressControlTest, Disabled_TakesNeitherKeysNorClicks) {
  control->SetAddress(0x0A000005);
  control->setEnabled(false);

  QTest::mouseClick(fields[0], Qt::LeftButton);
  QTest::keyClick(fields[0], '9');

  EXPECT_EQ(GetText(), "10.0.0.5");
  EXPECT_EQ(GetFocusedField(), -1);
}

// Its size.

TEST(IPAddressControl, AtTheHintedSize_EveryFieldHoldsThreeDigits) {
  for (const int pointSize : {9, 12, 24}) {
    QWidget window;
    window.setFont(QFont(QStringLiteral("DejaVu Sans"), pointSize));
    auto* control = new IPAddressControl(&window);
    control->SetAddress(0xFFFFFFFF);
    control->resize(control->minimumSizeHint());
    window.show();

    const QList<QLineEdit*> fields = control->findChildren<QLineEdit*>();
    EXPECT_EQ(fields.size(), 4);
    for (const QLineEdit* field : fields) {
      EXPECT_GE(field->width(), field->fontMetrics().horizontalAdvance(QStringLiteral("255")) + 2) << pointSize;
      EXPECT_GE(field->height(), field->fontMetrics().height()) << pointSize;
    }
  }
}

TEST(IPAddressControl, Digits_AreDrawnWhole) {
  QWidget window;
  auto* control = new IPAddressControl(&window);
  control->resize(control->minimumSizeHint());
  window.resize(control->size());
  window.show();
  const auto countInk = [&](const QLineEdit& aField, int aScale) {
    QImage image(aField.size() * aScale, QImage::Format_RGB32);
    image.setDevicePixelRatio(aScale);
    image.fill(Qt::white);
    control->render(&image, {}, QRegion(aField.geometry()));
    int ink = 0;
    for (int y = 0; y < image.height(); ++y) {
      for (const int x : {0, image.width() - 1}) {
        ink += qGray(image.pixel(x, y)) < 128 ? 1 : 0;
      }
    }
    return ink;
  };

  control->SetAddress(0xFFFFFFFF);

  for (const QLineEdit* field : control->findChildren<QLineEdit*>()) {
    for (const int scale : {1, 2}) {
      EXPECT_EQ(countInk(*field, scale), 0) << "no digit reaches the field's edge";
    }
  }
}

} // namespace

} // namespace krgui
