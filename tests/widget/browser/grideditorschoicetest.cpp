// Choosing in the combo box and pressing the command's button, by mouse and by keyboard.

#include "editorsfixture.h"

#include <algorithm>
#include <vector>

namespace krgui {

namespace {

/// "DeviceRun" cannot be read, but its register can: it alone tells when it is done.
std::string MakeNodesWithUnreadableCommand() {
  const std::string begin = "<Command Name=\"DeviceRun\">";
  std::string nodes = MakeEditorNodes();
  return nodes.insert(nodes.find(begin) + begin.size(), "<ImposedAccessMode>WO</ImposedAccessMode>");
}

class UnreadableCommandTest : public EditorsTest {
protected:
  UnreadableCommandTest() : EditorsTest(MakeNodesWithUnreadableCommand()) {}
};

TEST_F(EditorsTest, ChoiceByMouse_IsWritten) {
  Select("PixelFormat");
  QTest::mouseClick(Combo(), Qt::LeftButton);
  CTooltipListCtrl& list = Combo()->GetList();
  ASSERT_TRUE(list.isVisible());
  Pump();
  EXPECT_NE(Combo(), nullptr) << "The open list ends no edit.";

  QTest::mouseClick(list.viewport(), Qt::LeftButton, {}, list.visualRect(list.model()->index(2, 0)).center());
  Pump();

  EXPECT_EQ(Read(camera.Enum("PixelFormat"), &KrGenEnum::GetValue), 5);
  EXPECT_TRUE(grid->hasFocus());
  ASSERT_NE(Combo(), nullptr);
  EXPECT_EQ(Combo()->currentText(), "RGB8");
}

TEST_F(EditorsTest, ChoiceByKeyboardInTheList_IsWritten) {
  Enter("ReverseX");
  QTest::keyClick(Combo(), Qt::Key_F4);
  ASSERT_TRUE(Combo()->IsListOpen());

  QTest::keyClick(&Combo()->GetList(), Qt::Key_Down);
  QTest::keyClick(&Combo()->GetList(), Qt::Key_Return);
  Pump();

  EXPECT_TRUE(Read(camera.Boolean("ReverseX"), &KrGenBoolean::GetValue));
}

TEST_F(EditorsTest, ArrowKeysInTheClosedCombo_WriteWhenTheEditEndsOnly) {
  Enter("PixelFormat");
  QTest::keyClick(Combo(), Qt::Key_Down);
  QTest::keyClick(Combo(), Qt::Key_Down);
  Pump();
  EXPECT_EQ(camera.port.CountWrites(), 0U);

  QTest::keyClick(Combo(), Qt::Key_Return);
  Pump();

  EXPECT_EQ(camera.port.CountWrites(), 1U);
  EXPECT_EQ(Read(camera.Enum("PixelFormat"), &KrGenEnum::GetValue), 5);
}

TEST_F(EditorsTest, EscapeInTheList_ClosesTheListFirstAndThenTheEdit) {
  Enter("PixelFormat");
  QTest::keyClick(Combo(), Qt::Key_F4);
  QTest::keyClick(&Combo()->GetList(), Qt::Key_Down);
  QTest::keyClick(&Combo()->GetList(), Qt::Key_Escape);
  ActivateAgain();
  ASSERT_NE(Combo(), nullptr);
  EXPECT_TRUE(Combo()->hasFocus());
  EXPECT_FALSE(Combo()->IsListOpen());
  EXPECT_EQ(Combo()->currentText(), "Mono8");

  QTest::keyClick(Combo(), Qt::Key_Down);
  QTest::keyClick(Combo(), Qt::Key_Escape);
  Pump();

  EXPECT_TRUE(grid->hasFocus());
  EXPECT_EQ(camera.port.CountWrites(), 0U);
  ASSERT_NE(Combo(), nullptr);
  EXPECT_EQ(Combo()->currentText(), "Mono8");
}

TEST_F(EditorsTest, ChoiceOfThePresentItem_WritesNothing) {
  Enter("PixelFormat");
  QTest::keyClick(Combo(), Qt::Key_F4);
  QTest::keyClick(&Combo()->GetList(), Qt::Key_Return);
  ActivateAgain();

  EXPECT_EQ(camera.port.CountWrites(), 0U);
  EXPECT_TRUE(grid->hasFocus());
}

TEST_F(EditorsTest, ValueOfNoEntry_ShowsNoChoiceAndWritesNothing) {
  SetRegister(0x118, {99});
  Enter("PixelFormat");
  ASSERT_NE(Combo(), nullptr);
  EXPECT_EQ(Combo()->currentIndex(), -1);
  elsewhere->setFocus();
  Pump();

  EXPECT_EQ(camera.port.CountWrites(), 0U);
}

TEST_F(EditorsTest, DeviceThatRefusesAChoice_ShowsMessageAndItsOwnValue) {
  Enter("ReverseX");
  FailWrites();
  QTest::keyClick(Combo(), Qt::Key_Down);
  ExpectMessage();
  QTest::keyClick(Combo(), Qt::Key_Return);
  Pump();

  EXPECT_TRUE(message.startsWith("Error writing value:\n"));
  ASSERT_NE(Combo(), nullptr);
  EXPECT_EQ(Combo()->currentText(), "False");
}

TEST_F(EditorsTest, NewValueOfTheDevice_IsNotOverwrittenByAnUntouchedCombo) {
  Enter("PixelFormat");
  ChangeRegister(0x118, {5}, "PixelFormat");
  ASSERT_NE(Combo(), nullptr);
  EXPECT_EQ(Combo()->currentText(), "RGB8");

  elsewhere->setFocus();
  Pump();

  EXPECT_EQ(camera.port.CountWrites(), 0U);
}

TEST_F(EditorsTest, WheelOverTheCombo_ChangesNoChoice) {
  Enter("PixelFormat");
  const QPoint center = Combo()->rect().center();
  QWheelEvent event(center, Combo()->mapToGlobal(center), {}, QPoint(0, -120), Qt::NoButton, {}, Qt::NoScrollPhase,
                    false);
  QApplication::sendEvent(Combo(), &event);

  EXPECT_EQ(Combo()->currentIndex(), 0);
}

// Commands.

TEST_F(EditorsTest, ClickOnButton_ExecutesOnce) {
  Select("DeviceReset");
  QTest::mouseClick(Button(), Qt::LeftButton);
  Pump();

  EXPECT_EQ(camera.port.CountWrites(), 1U);
  EXPECT_EQ(camera.Peek(0x170, 1).front(), 1);
}

TEST_F(EditorsTest, SpaceOnButton_ExecutesAndEnterDoesNot) {
  Enter("DeviceReset");
  ASSERT_TRUE(Button()->hasFocus());
  QTest::keyClick(Button(), Qt::Key_Return);
  Pump();
  EXPECT_EQ(camera.port.CountWrites(), 0U);
  EXPECT_TRUE(Button()->hasFocus());

  QTest::keyClick(Button(), Qt::Key_Space);
  Pump();

  EXPECT_EQ(camera.port.CountWrites(), 1U);
}

TEST_F(EditorsTest, ExecutingCommand_HasNoButtonUntilItIsDone) {
  Enter("DeviceRun");
  QTest::keyClick(Button(), Qt::Key_Space);
  Pump();
  EXPECT_EQ(Button(), nullptr);
  EXPECT_TRUE(grid->hasFocus());
  EXPECT_EQ(Value("DeviceRun"), "{Executing}");

  SetRegister(0x174, {0});
  grid->HandleMessage({kRowChangedMessage, Item("DeviceRun"), 0});
  Pump();

  EXPECT_NE(Button(), nullptr);
}

TEST_F(EditorsTest, ExecutedCommand_IsNoChangeByTheUser) {
  Select("DeviceReset");

  QTest::mouseClick(Button(), Qt::LeftButton);
  Pump();

  EXPECT_EQ(camera.port.CountWrites(), 1U);
  EXPECT_FALSE(grid->HasChanged());
}

TEST_F(UnreadableCommandTest, WhileItRuns_HasNoButton) {
  Enter("DeviceRun");
  QTest::keyClick(Button(), Qt::Key_Space);
  Pump();

  EXPECT_EQ(camera.port.CountWrites(), 1U);
  EXPECT_EQ(Button(), nullptr);
  EXPECT_TRUE(grid->hasFocus());
}

TEST_F(UnreadableCommandTest, LeftAndSelectedAgainWhileItRuns_HasItsButtonWhenItIsDone) {
  Select("DeviceRun");
  QTest::mouseClick(Button(), Qt::LeftButton);
  Pump();
  Select("OffsetX");
  Select("DeviceRun");
  EXPECT_EQ(Button(), nullptr);

  SetRegister(0x174, {0});
  grid->HandleMessage({kRowChangedMessage, Item("DeviceRun"), 0});
  Pump();

  EXPECT_NE(Button(), nullptr);
}

TEST_F(EditorsTest, CommandThatFails_ShowsWhy) {
  Select("DeviceReset");
  FailWrites();
  ExpectMessage();
  QTest::mouseClick(Button(), Qt::LeftButton);
  Pump();

  EXPECT_TRUE(message.startsWith("Error executing command:\n")) << message.toStdString();
  EXPECT_TRUE(message.contains("The device did not answer."));
  EXPECT_EQ(caption, "Error");
  EXPECT_NE(Button(), nullptr);
}

TEST_F(EditorsTest, CommandThatFails_IsReadAgainAfterItsMessageBox) {
  const auto hasRead = [this] {
    const std::vector<RegisterAccessRecord> records = camera.port.TakeRecords();
    return std::any_of(records.begin(), records.end(),
                       [](const RegisterAccessRecord& aRecord) { return !aRecord.isWrite; });
  };
  Select("DeviceRun");
  FailWrites();
  bool hadReadBefore = true;
  DuringNextModalLoop([&](QWidget& aBox) {
    hadReadBefore = hasRead();
    QTest::keyClick(&aBox, Qt::Key_Escape);
  });
  (void)camera.port.TakeRecords();
  QTest::mouseClick(Button(), Qt::LeftButton);
  Pump();

  EXPECT_FALSE(hadReadBefore);
  EXPECT_TRUE(hasRead());
}

TEST_F(EditorsTest, RowsThatGoDuringTheMessageBoxOfACommand_AreNotReadAgain) {
  Select("DeviceRun");
  FailWrites();
  bool wasShown = false;
  DuringNextModalLoop([&](QWidget& aBox) {
    wasShown = true;
    grid->Clear();
    QTest::keyClick(&aBox, Qt::Key_Escape);
  });
  QTest::mouseClick(Button(), Qt::LeftButton);
  Pump();

  EXPECT_TRUE(wasShown);
  EXPECT_EQ(Button(), nullptr);
  EXPECT_EQ(grid->GetEdited(), kNoItem);
}

TEST_F(EditorsTest, EscapeOnButton_GivesTheGridTheFocus) {
  Enter("DeviceReset");
  QTest::keyClick(Button(), Qt::Key_Escape);
  Pump();

  EXPECT_TRUE(grid->hasFocus());
  EXPECT_EQ(camera.port.CountWrites(), 0U);
}

} // namespace

} // namespace krgui
