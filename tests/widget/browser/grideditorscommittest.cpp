// What is written of an edit, when, and what the user hears of it.

#include "editorsfixture.h"
#include "windowwait.h"

namespace krgui {

namespace {

TEST_F(EditorsTest, EnterInEditBox_WritesAndGivesTheGridTheFocus) {
  Enter("OffsetX");
  Type(NumberBox(), "42", Qt::Key_Return);

  EXPECT_EQ(camera.port.CountWrites(), 0U) << "Nothing is written inside of the key's event.";
  Pump();

  EXPECT_EQ(Integer("OffsetX"), 42);
  EXPECT_TRUE(grid->hasFocus());
  EXPECT_TRUE(grid->HasChanged());
  ASSERT_NE(NumberBox(), nullptr) << "The selected row keeps an editor.";
  EXPECT_EQ(NumberBox()->text(), "42");
}

TEST_F(EditorsTest, KeypadEnterAndTab_WriteToo) {
  Enter("OffsetX");
  Type(NumberBox(), "43", Qt::Key_Enter);
  Pump();
  EXPECT_EQ(Integer("OffsetX"), 43);
  for (const Qt::Key key : {Qt::Key_Tab, Qt::Key_Backtab}) {
    Enter("OffsetX");
    Type(NumberBox(), key == Qt::Key_Tab ? "44" : "45", key);
    Pump();
    EXPECT_EQ(Integer("OffsetX"), key == Qt::Key_Tab ? 44 : 45);
    EXPECT_TRUE(grid->hasFocus());
  }
}

TEST_F(EditorsTest, FocusThatGoesElsewhere_Writes) {
  Enter("ExposureTime");
  QTest::keyClicks(NumberBox(), "2.5");

  elsewhere->setFocus();
  Pump();

  EXPECT_EQ(Read(camera.Float("ExposureTime"), &KrGenFloat::GetValue), 2.5);
  EXPECT_TRUE(elsewhere->hasFocus());
}

TEST_F(EditorsTest, AnotherWindow_EndsTheEditAndWrites) {
  Enter("OffsetX");
  QTest::keyClicks(NumberBox(), "7");
  QWidget other;
  other.show();
  other.activateWindow();
  ASSERT_TRUE(krtest::AwaitActive(&other));
  Pump();

  EXPECT_EQ(Integer("OffsetX"), 7);
  window->activateWindow();
  ASSERT_TRUE(krtest::AwaitActive(window.get()));
  EXPECT_TRUE(grid->hasFocus());
}

TEST_F(EditorsTest, DialogOfTheApplication_LeavesTheEditOpen) {
  Enter("OffsetX");
  QTest::keyClicks(NumberBox(), "7");
  QDialog dialog(window.get());
  dialog.open();
  ASSERT_TRUE(krtest::AwaitActive(&dialog));
  Pump();
  const bool wasOpen = NumberBox() != nullptr;
  dialog.close();
  ActivateAgain();

  EXPECT_TRUE(wasOpen);
  ASSERT_NE(NumberBox(), nullptr);
  EXPECT_TRUE(NumberBox()->hasFocus());
  EXPECT_EQ(NumberBox()->text(), "7");
  EXPECT_EQ(camera.port.CountWrites(), 0U);
}

TEST_F(EditorsTest, ContextMenuOfEditBox_LeavesTheEditOpen) {
  Enter("DeviceUserID");
  QTest::keyClicks(TextBox(), "x");
  QContextMenuEvent event(QContextMenuEvent::Mouse, QPoint(5, 5), TextBox()->mapToGlobal(QPoint(5, 5)));
  QApplication::sendEvent(TextBox(), &event);
  Pump();

  EXPECT_NE(QApplication::activePopupWidget(), nullptr);
  ASSERT_NE(TextBox(), nullptr);
  EXPECT_EQ(TextBox()->text(), "x");
  EXPECT_EQ(camera.port.CountWrites(), 0U);
  QApplication::activePopupWidget()->close();
}

TEST_F(EditorsTest, ClickOnAnotherRow_WritesToTheRowThatWasEdited) {
  ClickValue("OffsetX");
  ASSERT_NE(NumberBox(), nullptr);
  QTest::keyClicks(NumberBox(), "99");

  ClickValue("BinningHorizontal");

  EXPECT_EQ(Integer("OffsetX"), 99);
  EXPECT_EQ(Integer("BinningHorizontal"), 0);
  ASSERT_NE(NumberBox(), nullptr);
  EXPECT_EQ(NumberBox()->accessibleName(), "BinningHorizontal");
  EXPECT_EQ(NumberBox()->text(), "0");
}

TEST_F(EditorsTest, SelectionChangedBeforeTheWriteWasHandled_StillWritesToTheEditedRow) {
  Enter("OffsetX");
  QTest::keyClicks(NumberBox(), "12");
  elsewhere->setFocus();

  grid->Select(Item("ReverseX"));
  Pump();

  EXPECT_EQ(Integer("OffsetX"), 12);
}

TEST_F(EditorsTest, AnotherRowSelectedByTheProgram_ClosesTheEditWithoutWriting) {
  Enter("OffsetX");
  QTest::keyClicks(NumberBox(), "99");

  grid->Select(Item("BinningHorizontal"));
  Pump();

  EXPECT_EQ(camera.port.CountWrites(), 0U);
  EXPECT_EQ(Value("OffsetX"), "0 ");
  EXPECT_FALSE(grid->HasChanged());
  ASSERT_NE(NumberBox(), nullptr);
  EXPECT_EQ(NumberBox()->accessibleName(), "BinningHorizontal");
}

TEST_F(EditorsTest, Escape_WritesNothingAndShowsTheValueAgain) {
  for (const char* name : {"OffsetX", "DeviceUserID"}) {
    Enter(name);
    QLineEdit* editBox = NumberBox() != nullptr ? NumberBox() : TextBox();
    const QString before = editBox->text();
    Type(editBox, "12", Qt::Key_Escape);
    Pump();

    EXPECT_EQ(camera.port.CountWrites(), 0U) << name;
    EXPECT_TRUE(grid->hasFocus()) << name;
    EXPECT_EQ(editBox->text(), before) << name;
  }
  EXPECT_FALSE(grid->HasChanged());
}

TEST_F(EditorsTest, EnterAndEscape_ReachNobodyAround) {
  struct Around : QObject {
    bool eventFilter(QObject*, QEvent* aEvent) override {
      keys += aEvent->type() == QEvent::KeyPress ? 1 : 0;
      return false;
    }
    int keys = 0;
  } around;
  window->installEventFilter(&around);
  for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Escape, Qt::Key_Down, Qt::Key_PageDown}) {
    Enter("DeviceUserID");
    around.keys = 0;
    QTest::keyClick(TextBox(), key);
    EXPECT_EQ(around.keys, 0) << key;
    Pump();
  }
}

TEST_F(EditorsTest, HeldEnterAndEscape_EndNoEdit) {
  Enter("OffsetX");
  QTest::keyClicks(NumberBox(), "3");
  for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Escape}) {
    QKeyEvent repeated(QEvent::KeyPress, key, Qt::NoModifier, QString(), true);
    QApplication::sendEvent(NumberBox(), &repeated);
    Pump();
    ASSERT_NE(NumberBox(), nullptr);
    EXPECT_TRUE(NumberBox()->hasFocus());
  }
}

TEST_F(EditorsTest, EscapeHeldPastTheEndOfTheEdit_ClosesNothingAround) {
  QDialog dialog;
  bool wasRejected = false;
  QObject::connect(&dialog, &QDialog::rejected, [&] { wasRejected = true; });
  window->setParent(&dialog);
  window->show();
  dialog.show();
  dialog.activateWindow();
  ASSERT_TRUE(krtest::AwaitActive(&dialog));
  Enter("OffsetX");
  QTest::keyPress(NumberBox(), Qt::Key_Escape);
  QKeyEvent repeated(QEvent::KeyPress, Qt::Key_Escape, Qt::NoModifier, QString(), true);
  QApplication::sendEvent(grid, &repeated);
  QTest::keyRelease(grid.data(), Qt::Key_Escape);

  EXPECT_FALSE(wasRejected);
  EXPECT_TRUE(grid->hasFocus());
  QTest::keyClick(grid.data(), Qt::Key_Escape);
  EXPECT_TRUE(wasRejected) << "A press of its own is the window's.";
  window->setParent(nullptr);
}

TEST_F(EditorsTest, TypedHexadecimal_IsWrittenWithAndWithoutPrefix) {
  for (const char* text : {"0x1f", "1f", "1F"}) {
    camera.Integer("LineMask").SetValue(0).IsOK();
    Enter("LineMask");
    Type(NumberBox(), text, Qt::Key_Return);
    Pump();
    EXPECT_EQ(Integer("LineMask"), 31) << text;
  }
}

TEST_F(EditorsTest, TextThatIsNoNumber_IsDroppedWithoutMessage) {
  Enter("LineMask");
  Type(NumberBox(), "zz", Qt::Key_Return);
  Pump();

  EXPECT_EQ(camera.port.CountWrites(), 0U);
  EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
  ASSERT_NE(NumberBox(), nullptr);
  EXPECT_EQ(NumberBox()->text(), "0x0");
}

TEST_F(EditorsTest, PresentValue_IsNotWrittenAndEditorCloses) {
  SetRegister(0x108, {42});
  Enter("OffsetX");
  const QPointer<QLineEdit> editBox(NumberBox());
  Type(editBox, "42", Qt::Key_Return);
  const bool wasHidden = !editBox->isVisible();
  Pump();

  EXPECT_TRUE(wasHidden);
  EXPECT_EQ(camera.port.CountWrites(), 0U);
  EXPECT_FALSE(grid->HasChanged());
}

TEST_F(EditorsTest, UntouchedEditBox_WritesNothing) {
  Enter("DeviceUserID");
  elsewhere->setFocus();
  Pump();

  EXPECT_EQ(camera.port.CountWrites(), 0U);
}

TEST_F(EditorsTest, ValueOutOfRange_ShowsWhyAndTheDevicesValueAgain) {
  SetRegister(0x108, {42});
  Enter("OffsetX");
  ExpectMessage();
  Type(NumberBox(), "1001", Qt::Key_Return);
  Pump();

  EXPECT_TRUE(message.startsWith("Error writing value:\n")) << message.toStdString();
  EXPECT_GT(message.size(), 22);
  EXPECT_EQ(caption, "Error");
  EXPECT_EQ(Integer("OffsetX"), 42);
  EXPECT_FALSE(grid->HasChanged());
  ASSERT_NE(NumberBox(), nullptr);
  EXPECT_EQ(NumberBox()->text(), "42");
}

TEST_F(EditorsTest, DeviceThatRefuses_IsQuotedInTheMessage) {
  Enter("DeviceUserID");
  FailWrites();
  ExpectMessage();
  Type(TextBox(), "cam", Qt::Key_Return);
  Pump();

  EXPECT_TRUE(message.contains("The device did not answer.")) << message.toStdString();
  ASSERT_NE(TextBox(), nullptr);
  EXPECT_EQ(TextBox()->text(), "");
}

TEST_F(EditorsTest, IPAddress_IsWrittenMostSignificantPartFirst) {
  Enter("GevCurrentIPAddress");
  Type(TextBox(), "192.168.1.30", Qt::Key_Return);
  Pump();

  EXPECT_EQ(Integer("GevCurrentIPAddress"), 0xC0A8011E);
}

TEST_F(EditorsTest, InvalidIPAddress_ShowsWarningAndWritesNothing) {
  for (const char* text : {"192.168.1.300", "1.2.3", "camera"}) {
    Enter("GevCurrentIPAddress");
    ExpectMessage();
    Type(TextBox(), text, Qt::Key_Return);
    Pump();

    EXPECT_EQ(message, "Invalid IP Address.") << text;
    EXPECT_EQ(caption, "Error");
    EXPECT_EQ(icon, "Warning");
    EXPECT_EQ(camera.port.CountWrites(), 0U);
    ASSERT_NE(TextBox(), nullptr);
    EXPECT_EQ(TextBox()->text(), "0.0.0.0");
  }
}

TEST_F(EditorsTest, MACAddress_IsWrittenAsNumber) {
  Enter("GevMACAddress");
  Type(NumberBox(), "258", Qt::Key_Return);
  Pump();

  EXPECT_EQ(Integer("GevMACAddress"), 258);
  EXPECT_EQ(Value("GevMACAddress"), "00:00:00:00:01:02");
}

TEST_F(EditorsTest, TypedString_IsWrittenAsUTF8) {
  Enter("DeviceUserID");
  TextBox()->insert(QStringLiteral("Ä"));
  QTest::keyClick(TextBox(), Qt::Key_Return);
  Pump();

  EXPECT_EQ(Read(camera.String("DeviceUserID"), &KrGenString::GetValue), KrString("Ä"));
}

TEST_F(EditorsTest, StringThatIsFull_TakesNoMoreLetters) {
  Enter("DeviceUserID");
  QTest::keyClicks(TextBox(), "0123456789abcde");
  QTest::keyClicks(TextBox(), "f");
  QTest::keyClicks(TextBox(), "g");

  EXPECT_EQ(TextBox()->text(), "0123456789abcdef");
}

TEST_F(EditorsTest, PastedTextThatIsTooLong_IsRefusedByTheDeviceNotCut) {
  Enter("DeviceUserID");
  TextBox()->insert(QStringLiteral("0123456789abcdefghij"));
  EXPECT_EQ(TextBox()->text().size(), 20);
  ExpectMessage();
  QTest::keyClick(TextBox(), Qt::Key_Return);
  Pump();

  EXPECT_TRUE(message.startsWith("Error writing value:\n"));
  EXPECT_EQ(camera.port.CountWrites(), 0U);
}

TEST_F(EditorsTest, Undo_CountsAsTyping) {
  SetRegister(0x140, {'a'});
  Enter("DeviceUserID");
  QTest::keyClicks(TextBox(), "b");
  TextBox()->undo();
  EXPECT_EQ(TextBox()->text(), "a");
  QTest::keyClick(TextBox(), Qt::Key_Return);
  Pump();

  EXPECT_EQ(camera.port.CountWrites(), 0U);
}

} // namespace

} // namespace krgui
