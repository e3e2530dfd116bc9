// The serial terminal by keyboard: Enter anywhere, the order of the focus, mnemonics.

#include "temporaryfolder.h"
#include "terminalfixture.h"

#include <QAccessible>
#include <QKeyEvent>
#include <QListView>
#include <QProgressBar>

#include <map>

namespace krgui {

namespace {

using testing::ElementsAreArray;

class Keys : public TerminalTest {
protected:
  /// A key as the data field gets it from the window system.
  bool GiveKey(QEvent::Type aType, Qt::Key aKey, bool aIsRepeated, quint64 aTimeMs = 0) const {
    QKeyEvent event(aType, aKey, Qt::NoModifier, QStringLiteral("\r"), aIsRepeated);
    event.setTimestamp(aTimeMs);
    QCoreApplication::sendEvent(&Get(id::kData), &event);
    return event.isAccepted();
  }
  std::size_t CountWritesAfterAll() {
    // What was sent before it is written before it.
    Type(id::kData, "end");
    Click(id::kSend);
    EXPECT_TRUE(WaitFor([&] { return mLine->GetSent().ends_with("end\r"); }));
    return mLine->GetWrites().size() - 1;
  }
};

} // namespace

TEST_F(Keys, EnterInTheDataField_SendsOnce) {
  Open();
  QTest::keyClicks(&Get(id::kData), "A");

  QTest::keyClick(&Get(id::kData), Qt::Key_Return);

  EXPECT_TRUE(AwaitSent("A\r"));
  EXPECT_TRUE(mWindow->GetWidget());
}

TEST_F(Keys, EnterWithAnEmptyField_SendsNothingAndGoesNoFurther) {
  Open();

  EXPECT_TRUE(GiveKey(QEvent::KeyPress, Qt::Key_Return, false));

  EXPECT_EQ(CountWritesAfterAll(), 0U);
}

TEST_F(Keys, EnterOnAnyControl_SendsAndDoesNothingElse) {
  Open();
  Type(id::kData, "A");
  mLine->Receive("text");
  ASSERT_TRUE(AwaitText(u"text"));
  Check(id::kEcho, false);
  const int focused[] = {id::kPort, id::kLoopback, id::kCR, id::kFile, id::kClear, id::kShowHybrid, id::kSend};
  std::string sent;
  for (const int control : focused) {
    Get(control).setFocus();
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);

    sent += "A\r";
    EXPECT_TRUE(AwaitSent(sent)) << control;
  }

  EXPECT_EQ(GetText(), u"text") << "the button Clear was not pressed";
  EXPECT_EQ(mLine->GetWrites().size(), std::size(focused));
}

TEST_F(Keys, EnterWhileAFileIsSent_SendsNothing) {
  Open();
  mLine->SetRoom(0);
  TemporaryFolder folder;
  TemporaryFolder::WriteFile(folder.GetFile("data"), "hello");
  Type(id::kFile, QString::fromStdString(folder.GetFile("data")));
  Click(id::kSendFile);
  Type(id::kData, "A");

  EXPECT_TRUE(GiveKey(QEvent::KeyPress, Qt::Key_Return, false));
  GiveKey(QEvent::KeyRelease, Qt::Key_Return, false);

  mLine->SetRoom(SIZE_MAX);
  ASSERT_TRUE(WaitFor([&] { return Get(id::kSend).isEnabled(); }));
  EXPECT_EQ(mLine->GetSent(), "hello");
}

TEST_F(Keys, KeyboardAlone_IsEnoughToSendInHexadecimalAndToClear) {
  Open();
  const auto press = [](Qt::Key aKey, Qt::KeyboardModifiers aModifiers = Qt::NoModifier) {
    QTest::keyClick(QApplication::focusWidget(), aKey, aModifiers);
  };
  // A button's mnemonic presses it for a moment.
  press(Qt::Key_H, Qt::AltModifier);
  ASSERT_TRUE(WaitFor([&] { return Get<QRadioButton>(id::kSendHexadecimal).isChecked(); }));
  press(Qt::Key_O, Qt::AltModifier);
  ASSERT_TRUE(WaitFor([&] { return Get(id::kOtherField).isEnabled(); }));
  press(Qt::Key_X, Qt::AltModifier);
  QTest::keyClicks(QApplication::focusWidget(), "ff");
  press(Qt::Key_Backtab, Qt::ShiftModifier);
  press(Qt::Key_Backtab, Qt::ShiftModifier);
  press(Qt::Key_Space); // NULL.
  press(Qt::Key_D, Qt::AltModifier);
  QTest::keyClicks(QApplication::focusWidget(), "41 4");
  press(Qt::Key_Enter);

  EXPECT_TRUE(AwaitSent("A\x04\r\0\xFF"s));
  EXPECT_TRUE(WaitFor([&] { return !GetText().empty(); }));
  press(Qt::Key_R, Qt::AltModifier);
  EXPECT_TRUE(AwaitText(u""));
}

TEST_F(Keys, SentByEnterInTheDataField_IsReplacedByWhatIsTypedNextAndRepeatedByEnter) {
  Open();
  for (const char* text : {"*IDN?", "HELP"}) {
    QTest::keyClicks(&Get(id::kData), text);
    QTest::keyClick(&Get(id::kData), Qt::Key_Return);
  }
  QTest::keyClick(&Get(id::kData), Qt::Key_Return);

  EXPECT_TRUE(AwaitSent("*IDN?\rHELP\rHELP\r"));
}

TEST_F(Keys, SentByTheButtonWithTheFocusInTheDataField_SelectsItsText) {
  Open();
  Get(id::kData).setFocus();
  Type(id::kData, "A");

  Click(id::kSend);

  EXPECT_EQ(Get<QLineEdit>(id::kData).selectedText(), "A");
}

TEST_F(Keys, SentWithTheFocusElsewhere_LeavesTheDataFieldAsItIs) {
  Open();
  Type(id::kData, "A");
  Get(id::kSend).setFocus();

  QTest::keyClick(&Get(id::kSend), Qt::Key_Return);

  EXPECT_TRUE(AwaitSent("A\r"));
  EXPECT_FALSE(Get<QLineEdit>(id::kData).hasSelectedText());
}

TEST_F(Keys, LetterOfAControlThatCannotBeUsed_IsNotTyped) {
  Open();
  ASSERT_FALSE(Get(id::kStop).isEnabled());

  QTest::keyClick(&Get(id::kData), Qt::Key_T, Qt::AltModifier);

  EXPECT_EQ(Get<QLineEdit>(id::kData).text(), "");
}

TEST_F(Keys, OtherTicked_BringsTheFocusToItsField) {
  Open();

  QTest::keyClick(&Get(id::kData), Qt::Key_O, Qt::AltModifier);
  EXPECT_TRUE(WaitFor([&] { return Get(id::kOtherField).hasFocus(); }));

  QTest::keyClick(&Get(id::kOtherField), Qt::Key_O, Qt::AltModifier);
  EXPECT_TRUE(WaitFor([&] { return !Get(id::kOtherField).isEnabled(); }));
  EXPECT_FALSE(Get(id::kOtherField).hasFocus());
}

TEST_F(Keys, EnterInTheTranscript_Sends) {
  Open();
  Type(id::kData, "A");
  GetTranscript().setFocus();

  QTest::keyClick(&GetTranscript(), Qt::Key_Return);

  EXPECT_TRUE(AwaitSent("A\r"));
}

TEST_F(Keys, EnterInTheOpenListOfPorts_PicksAPort) {
  Open();
  Type(id::kData, "A");
  auto& list = Get<QComboBox>(id::kPort);
  list.showPopup();
  ASSERT_TRUE(WaitFor([&] { return list.view()->isVisible(); }));

  QTest::keyClick(list.view(), Qt::Key_Down);
  QTest::keyClick(list.view(), Qt::Key_Return);

  EXPECT_TRUE(WaitFor([&] { return mWindow->GetSerialPort() == KrDeviceSerial::Bulk0; }));
  EXPECT_EQ(mLine->GetSent(), "");
}

TEST_F(Keys, EnterThatDeletesTheWindowByItsBox_EndsThere) {
  Open();
  Check(id::kSendHexadecimal, true);
  Type(id::kData, "G");
  DuringNextModalLoop([this](QWidget&) { mWindow.reset(); });

  QTest::keyClick(&Get(id::kData), Qt::Key_Return);

  EXPECT_EQ(mWindow, nullptr);
}

TEST_F(Keys, TabKey_GoesThroughTheControlsInTheirOrder) {
  mDevice.booleans["BulkLoopback"] = false;
  Open();
  Check(id::kOther, true);
  mLine->Receive("text");
  ASSERT_TRUE(AwaitText(u"text"));
  Get(id::kPort).setFocus();

  // Of radio buttons the chosen one takes the focus.
  std::vector<QString> visited;
  do {
    visited.push_back(QApplication::focusWidget()->objectName());
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
  } while (QApplication::focusWidget() != &Get(id::kPort) && visited.size() < 50);

  std::vector<QString> expected;
  for (const int control :
       {id::kPort,       id::kSpeed,     id::kLoopback, id::kSendASCII,  id::kData,  id::kSend,   id::kCR,
        id::kLF,         id::kNull,      id::kOther,    id::kOtherField, id::kFile,  id::kBrowse, id::kSendFile,
        id::kValidation, id::kShowASCII, id::kEcho,     id::kPause,      id::kClear, id::kSave})
    expected.push_back(QStringLiteral("control%1").arg(control));
  expected.push_back("transcript");
  EXPECT_THAT(visited, ElementsAreArray(expected));
}

TEST_F(Keys, Mnemonics_AreAllDifferent) {
  Open();
  std::map<QString, QString> owners;
  for (const QWidget* widget : mWindow->GetWidget()->findChildren<QWidget*>()) {
    const QString text = widget->property("text").toString();
    const QString key = QKeySequence::mnemonic(text).toString();
    if (key.isEmpty())
      continue;
    EXPECT_EQ(owners.count(key), 0U) << text.toStdString() << " and " << owners[key].toStdString();
    owners[key] = text;
  }
  EXPECT_GT(owners.size(), 15U);
}

TEST_F(Keys, MnemonicOfALabel_FocusesItsField) {
  Open();
  Check(id::kOther, true);
  const std::pair<Qt::Key, int> rows[] = {
      {Qt::Key_P, id::kPort}, {Qt::Key_D, id::kData}, {Qt::Key_X, id::kOtherField}, {Qt::Key_F, id::kFile}};
  for (const auto& [key, control] : rows) {
    QTest::keyClick(QApplication::focusWidget(), key, Qt::AltModifier);
    EXPECT_EQ(QApplication::focusWidget(), &Get(control)) << control;
  }
}

TEST_F(Keys, NewWindow_HasTheFocusInTheDataField) {
  Open();

  EXPECT_EQ(QApplication::focusWidget(), &Get(id::kData));
}

TEST_F(Keys, EveryControl_HasANameForAssistiveTechnology) {
  Open();
  for (QWidget* widget : mWindow->GetWidget()->findChildren<QWidget*>()) {
    if ((widget->focusPolicy() & Qt::TabFocus) == 0 || !widget->isVisible() || widget->objectName().startsWith("qt_"))
      continue;
    QAccessibleInterface* accessible = QAccessible::queryAccessibleInterface(widget);
    ASSERT_NE(accessible, nullptr) << widget->objectName().toStdString();
    EXPECT_FALSE(accessible->text(QAccessible::Name).isEmpty()) << widget->objectName().toStdString();
  }
  EXPECT_EQ(GetTranscript().accessibleName(), "Transcript");
  EXPECT_EQ(Get(id::kProgress).findChild<QProgressBar*>()->accessibleName(), "File transfer");
}

} // namespace krgui
