// The open editors of the property grid as assistive technology reads them and writes into them, in process.

#include "editorsfixture.h"

#include <QAccessible>

namespace krgui {

namespace {

class EditorAccessibilityTest : public EditorsTest {
protected:
  static constexpr int kValueColumn = 1;

  QAccessibleInterface& Cell(const char* aName) {
    QAccessibleTableInterface* table = QAccessible::queryAccessibleInterface(grid.data())->tableInterface();
    for (int row = 0; row < table->rowCount(); ++row) {
      if (table->cellAt(row, 0)->text(QAccessible::Name) == QLatin1String(aName))
        return *table->cellAt(row, kValueColumn);
    }
    ADD_FAILURE() << "No row " << aName;
    std::abort();
  }
  /// The first child of the cell that is edited.
  QAccessibleInterface& Editor(const char* aName) {
    QAccessibleInterface* editor = Cell(aName).child(0);
    if (editor == nullptr) {
      ADD_FAILURE() << "No editor on " << aName;
      std::abort();
    }
    return *editor;
  }
  /// Child and parent know of each other.
  void ExpectChildren(const char* aName, int aCount) {
    QAccessibleInterface& cell = Cell(aName);
    ASSERT_EQ(cell.childCount(), aCount);
    for (int index = 0; index < aCount; ++index) {
      ASSERT_NE(cell.child(index), nullptr);
      EXPECT_EQ(cell.child(index)->parent(), &cell) << index;
      EXPECT_EQ(cell.indexOfChild(cell.child(index)), index);
      const QPoint inside = cell.child(index)->rect().center();
      EXPECT_EQ(cell.childAt(inside.x(), inside.y()), cell.child(index));
    }
  }
};

} // namespace

TEST_F(EditorAccessibilityTest, EditBox_SaysNameValueAndState) {
  Enter("DeviceUserID");

  ExpectChildren("DeviceUserID", 1);
  TextBox()->setText(QStringLiteral("Left"));
  const QAccessibleInterface& editor = Editor("DeviceUserID");
  EXPECT_EQ(editor.role(), QAccessible::EditableText);
  EXPECT_EQ(editor.text(QAccessible::Name), "DeviceUserID");
  EXPECT_EQ(editor.text(QAccessible::Value), "Left");
  EXPECT_TRUE(editor.state().focused);
  EXPECT_TRUE(editor.state().editable);
  EXPECT_FALSE(editor.state().readOnly);
  EXPECT_FALSE(editor.state().disabled);
  EXPECT_EQ(QAccessible::queryAccessibleInterface(grid.data())->focusChild(), &editor);
}

TEST_F(EditorAccessibilityTest, EditBox_ReadsAndSelectsItsText) {
  Enter("DeviceUserID");
  TextBox()->setText(QStringLiteral("Left"));
  QAccessibleTextInterface* text = Editor("DeviceUserID").textInterface();
  ASSERT_NE(text, nullptr);

  text->setSelection(0, 1, 3);

  int start = 0;
  int end = 0;
  text->selection(0, &start, &end);
  EXPECT_EQ(start, 1);
  EXPECT_EQ(end, 3);
  EXPECT_EQ(TextBox()->selectedText(), "ef");
  EXPECT_EQ(text->characterCount(), 4);
  EXPECT_EQ(text->text(1, 3), "ef");
  EXPECT_EQ(text->textAtOffset(1, QAccessible::CharBoundary, &start, &end), "e");
  text->removeSelection(0);
  EXPECT_EQ(text->selectionCount(), 0);
  text->setCursorPosition(2);
  EXPECT_EQ(text->cursorPosition(), 2);
  for (int offset = 0; offset < text->characterCount(); ++offset) {
    const QRect place = text->characterRect(offset);
    EXPECT_EQ(text->offsetAtPoint(QPoint(place.left() + 1, place.center().y())), offset);
  }
  EXPECT_TRUE(text->characterRect(4).isEmpty());
}

TEST_F(EditorAccessibilityTest, EditBox_TakesTextAsIfTyped) {
  Enter("DeviceUserID");
  QAccessibleEditableTextInterface* text = Editor("DeviceUserID").editableTextInterface();
  ASSERT_NE(text, nullptr);

  text->insertText(0, QStringLiteral("Right"));
  text->replaceText(0, 1, QStringLiteral("L"));
  text->deleteText(2, 3);
  EXPECT_EQ(TextBox()->text(), "Liht");
  QTest::keyClick(TextBox(), Qt::Key_Return);
  Pump();

  EXPECT_EQ(Value("DeviceUserID"), "Liht");
}

TEST_F(EditorAccessibilityTest, ComboBox_SaysNameValueAndState) {
  Enter("PixelFormat");

  ExpectChildren("PixelFormat", 1);
  const QAccessibleInterface& editor = Editor("PixelFormat");
  EXPECT_EQ(editor.role(), QAccessible::ComboBox);
  EXPECT_EQ(editor.text(QAccessible::Name), "PixelFormat");
  EXPECT_EQ(editor.text(QAccessible::Value), "Mono8");
  EXPECT_TRUE(editor.state().focused);
  EXPECT_TRUE(editor.state().hasPopup);
  EXPECT_TRUE(editor.state().collapsed);

  Editor("PixelFormat").actionInterface()->doAction(QAccessibleActionInterface::showMenuAction());

  EXPECT_TRUE(Combo()->IsListOpen());
  EXPECT_TRUE(editor.state().expanded);
}

TEST_F(EditorAccessibilityTest, Number_ComesBeforeItsUpDownControl) {
  SetRegister(0x108, {7});
  Enter("OffsetX");

  ExpectChildren("OffsetX", 2);
  const QAccessibleInterface& editBox = *Cell("OffsetX").child(0);
  EXPECT_EQ(editBox.role(), QAccessible::EditableText);
  EXPECT_EQ(editBox.text(QAccessible::Name), "OffsetX");
  EXPECT_EQ(editBox.text(QAccessible::Value), "7");
  EXPECT_TRUE(editBox.state().focused);
  QAccessibleInterface& upDown = *Cell("OffsetX").child(1);
  EXPECT_EQ(upDown.role(), QAccessible::SpinBox);
  EXPECT_EQ(upDown.text(QAccessible::Name), "OffsetX");
  EXPECT_EQ(upDown.text(QAccessible::Value), "7");
  ASSERT_EQ(upDown.childCount(), 2);
  EXPECT_EQ(upDown.child(0)->text(QAccessible::Name), "Increase OffsetX");
  EXPECT_EQ(upDown.child(1)->text(QAccessible::Name), "Decrease OffsetX");
  EXPECT_EQ(upDown.child(1)->parent(), &upDown);
}

TEST_F(EditorAccessibilityTest, UpDown_SaysValueLimitsAndIncrement) {
  Enter("BinningHorizontal");
  QAccessibleValueInterface* value = Cell("BinningHorizontal").child(1)->valueInterface();
  ASSERT_NE(value, nullptr);

  NumberBox()->setText(QStringLiteral("6"));

  EXPECT_EQ(value->currentValue(), QVariant(6LL));
  EXPECT_EQ(value->minimumValue(), QVariant(0LL));
  EXPECT_EQ(value->maximumValue(), QVariant(10LL));
  EXPECT_EQ(value->minimumStepSize(), QVariant(3LL));
  NumberBox()->setText(QStringLiteral("none"));
  EXPECT_FALSE(value->currentValue().isValid());
}

TEST_F(EditorAccessibilityTest, UpDown_TakesAValueWithinTheLimitsAsIfTyped) {
  Enter("OffsetX");
  QAccessibleValueInterface* value = Cell("OffsetX").child(1)->valueInterface();
  ASSERT_NE(value, nullptr);

  value->setCurrentValue(4000);
  EXPECT_EQ(NumberBox()->text(), "1000");
  value->setCurrentValue(QStringLiteral("none"));
  EXPECT_EQ(NumberBox()->text(), "1000");
  QTest::keyClick(NumberBox(), Qt::Key_Return);
  Pump();

  EXPECT_EQ(Integer("OffsetX"), 1000);
}

TEST_F(EditorAccessibilityTest, UpDown_ReadsAndWritesHexadecimalWhereTheFeatureIs) {
  Enter("LineMask");
  QAccessibleValueInterface* value = Cell("LineMask").child(1)->valueInterface();
  ASSERT_NE(value, nullptr);

  value->setCurrentValue(0x1F);

  EXPECT_EQ(value->currentValue(), QVariant(0x1FLL));
  EXPECT_EQ(NumberBox()->text().right(2).toUpper(), "1F");
}

TEST_F(EditorAccessibilityTest, UpDown_StepsByItsActions) {
  Enter("OffsetX");
  QAccessibleActionInterface* actions = Cell("OffsetX").child(1)->actionInterface();
  ASSERT_NE(actions, nullptr);

  actions->doAction(QAccessibleActionInterface::increaseAction());
  actions->doAction(QAccessibleActionInterface::increaseAction());
  EXPECT_EQ(NumberBox()->text(), "2");
  actions->doAction(QAccessibleActionInterface::decreaseAction());

  EXPECT_EQ(NumberBox()->text(), "1");
}

TEST_F(EditorAccessibilityTest, Button_SaysItsNameAndExecutesTheCommand) {
  Select("DeviceReset");

  ExpectChildren("DeviceReset", 1);
  const QAccessibleInterface& button = Editor("DeviceReset");
  EXPECT_EQ(button.role(), QAccessible::Button);
  EXPECT_EQ(button.text(QAccessible::Name), "DeviceReset");
  EXPECT_FALSE(button.state().disabled);
  (void)camera.port.TakeRecords();

  Editor("DeviceReset").actionInterface()->doAction(QAccessibleActionInterface::pressAction());
  Pump();

  bool hasWritten = false;
  for (const RegisterAccessRecord& record : camera.port.TakeRecords())
    hasWritten = hasWritten || (record.isWrite && record.address == 0x170);
  EXPECT_TRUE(hasWritten);
}

TEST_F(EditorAccessibilityTest, ClosedEditor_IsInNoCell) {
  Enter("OffsetX");
  QLineEdit* editBox = NumberBox();

  QTest::keyClick(editBox, Qt::Key_Escape);

  EXPECT_EQ(Cell("OffsetX").childCount(), 0);
  EXPECT_EQ(QAccessible::queryAccessibleInterface(editBox)->parent(),
            QAccessible::queryAccessibleInterface(grid.data()));
}

TEST_F(EditorAccessibilityTest, AnEditorOnAnotherRow_IsInThatRowsCell) {
  Enter("OffsetX");
  QLineEdit* editBox = NumberBox();

  Enter("LineMask");

  ASSERT_EQ(NumberBox(), editBox);
  EXPECT_EQ(Cell("OffsetX").childCount(), 0);
  ExpectChildren("LineMask", 2);
}

} // namespace krgui
