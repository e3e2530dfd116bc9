// The serial terminal's transcript: formats, clearing, pausing, saving.

#include "controlhands.h"
#include "temporaryfolder.h"
#include "terminalfixture.h"

#include <QFileDialog>

#include <filesystem>

namespace krgui {

namespace {

using testing::HasSubstr;

class Transcripts : public TerminalTest {
protected:
  /// Saves to a path, which is typed into the dialog; aThen answers what comes after it.
  void Save(const std::string& aPath, const std::function<void()>& aThen = {}) {
    DuringNextModalLoop([aPath, aThen](QWidget& aDialog) {
      aDialog.findChild<QLineEdit*>()->setText(QString::fromStdString(aPath));
      if (aThen)
        aThen();
      QMetaObject::invokeMethod(&aDialog, "accept");
    });
    Click(id::kSave);
  }
  void Show(const std::string& aBytes, std::u16string_view aText) {
    mLine->Receive(aBytes);
    ASSERT_TRUE(AwaitText(aText));
  }

  TemporaryFolder mFolder;
};

} // namespace

TEST_F(Transcripts, ReceivedBytes_AreShownInEachFormat) {
  Open();
  Show("AB\r\n", u"AB\r\n");

  Click(id::kShowHexadecimal);
  Show("AB", u"41 42 ");

  Click(id::kShowHybrid);
  const std::u16string blanks(3 * 14 + 3, u' ');
  Show("AB", u"41 42 " + blanks + u"AB" + std::u16string(14, u' '));
}

TEST_F(Transcripts, MarksToggledByAssistiveTechnology_AreFollowed) {
  Open();

  krtest::ToggleAccessibly(Get(id::kShowHexadecimal));
  Show("AB", u"41 42 ");
  krtest::ToggleAccessibly(Get(id::kEcho));
  Type(id::kData, "C");
  Click(id::kSend);
  ASSERT_TRUE(AwaitSent("C\r"));
  krtest::ToggleAccessibly(Get(id::kPause));
  EXPECT_TRUE(GetTranscript().IsPaused());
  krtest::ToggleAccessibly(Get(id::kPause));
  Show("D", u"41 42 44 ");
  krtest::ToggleAccessibly(Get(id::kOther));
  EXPECT_TRUE(Get(id::kOtherField).isEnabled());
}

TEST_F(Transcripts, FormatChangedInALine_EmptiesTheTranscriptAndBeginsAnew) {
  Open();
  const std::u16string blanks(3 * 15 + 3, u' ');
  const std::pair<int, std::u16string> formats[] = {
      {id::kShowASCII, u"D"},
      {id::kShowHexadecimal, u"44 "},
      {id::kShowHybrid, u"44 " + blanks + u"D" + std::u16string(15, u' ')}};
  for (const auto& [before, unused] : formats) {
    for (const auto& [after, shown] : formats) {
      if (before == after)
        continue;
      Click(before);
      mLine->Receive("ABC");
      ASSERT_TRUE(WaitFor([&] { return !GetText().empty(); }));

      Click(after);
      EXPECT_EQ(GetText(), u"");

      Show("D", shown);
    }
  }
}

TEST_F(Transcripts, SameFormatClickedOnceMore_EmptiesTheTranscript) {
  Open();
  Show("ABC", u"ABC");

  Click(id::kShowASCII);

  EXPECT_EQ(GetText(), u"");
}

TEST_F(Transcripts, HybridLineThatGrows_IsReplaced) {
  Open();
  Click(id::kShowHybrid);
  mLine->Receive("ABC");
  ASSERT_TRUE(WaitFor([&] { return !GetText().empty(); }));

  mLine->Receive("DE");

  const std::u16string blanks(3 * 11 + 3, u' ');
  EXPECT_TRUE(AwaitText(u"41 42 43 44 45 " + blanks + u"ABCDE" + std::u16string(11, u' ')));
}

TEST_F(Transcripts, Clear_EmptiesIt) {
  Open();
  Show("AB", u"AB");

  Click(id::kClear);

  EXPECT_EQ(GetText(), u"");
}

TEST_F(Transcripts, LongText_IsBoundedTo32768Units) {
  Open();
  for (int block = 0; block < 40; ++block) {
    mLine->Receive(std::string(1000, static_cast<char>('A' + block % 26)));
    ASSERT_TRUE(WaitFor([&] { return GetText().ends_with(static_cast<char16_t>(u'A' + block % 26)); }));
  }

  EXPECT_LE(GetText().size(), 32'768U);
  EXPECT_GT(GetText().size(), 30'000U);
}

TEST_F(Transcripts, PortChangedWhileReceiving_GoesOnWithTheOther) {
  Open();
  for (int count = 0; count < 50; ++count)
    mLine->Receive("from the first\r\n");

  Pick(Get<QComboBox>(id::kPort), 1);
  mBulk->Receive("from the second");

  EXPECT_TRUE(WaitFor([&] { return GetText().ends_with(u"from the second"); }));
}

TEST_F(Transcripts, Paused_ReceivesOnAndShowsItAfterwards) {
  Open();
  Show("A", u"A");
  Click(id::kPause);

  Show("B", u"AB");
  EXPECT_EQ(GetTranscript().toPlainText(), "A");
  Click(id::kPause);

  EXPECT_EQ(GetTranscript().toPlainText(), "AB");
}

TEST_F(Transcripts, Save_WritesTheTextInUtf8) {
  Open();
  EXPECT_FALSE(Get(id::kSave).isEnabled());
  Show("A\r\nB\xE9", u"A\r\nB\u00E9");
  ASSERT_TRUE(Get(id::kSave).isEnabled());

  Save(mFolder.GetFile("saved.txt"));

  EXPECT_EQ(TemporaryFolder::ReadFile(mFolder.GetFile("saved.txt")), "A\nB\xC3\xA9");
}

TEST_F(Transcripts, SaveWhilePaused_WritesWhatIsOnTheScreen) {
  Open();
  Show("A", u"A");
  Click(id::kPause);
  Show("B", u"AB");

  Save(mFolder.GetFile("saved.txt"));

  EXPECT_EQ(TemporaryFolder::ReadFile(mFolder.GetFile("saved.txt")), "A");
}

TEST_F(Transcripts, SaveOverAFile_AsksAndNoKeepsIt) {
  Open();
  Show("A", u"A");
  const std::string file = mFolder.GetFile("saved.txt");
  TemporaryFolder::WriteFile(file, "before");

  Save(file, [] {
    DuringNextModalLoop([](QWidget& aQuestion) {
      DuringNextModalLoop([](QWidget& aDialog) { static_cast<QDialog&>(aDialog).reject(); });
      QTest::keyClick(&aQuestion, Qt::Key_N);
    });
  });
  EXPECT_EQ(TemporaryFolder::ReadFile(file), "before");

  Save(file, [] { DuringNextModalLoop([](QWidget& aQuestion) { QTest::keyClick(&aQuestion, Qt::Key_Y); }); });
  EXPECT_EQ(TemporaryFolder::ReadFile(file), "A");
}

TEST_F(Transcripts, SaveThatFails_TellsTheReasonAndLeavesNothing) {
  Open();
  Show("A", u"A");
  mBoxes.clear();

  Save(mFolder.GetFile("nowhere/saved.txt"), [this] { AnswerBoxes(1); });

  ASSERT_EQ(mBoxes.size(), 1U);
  EXPECT_THAT(mBoxes[0], testing::StartsWith("Save Transcript: The transcript could not be saved. "));
  EXPECT_THAT(mBoxes[0], HasSubstr("nowhere"));
  EXPECT_EQ(mFolder.GetNames().size(), 0U);
}

TEST_F(Transcripts, WindowDeletedWhileSaving_EndsTheDialog) {
  Open();
  Show("A", u"A");
  DuringNextModalLoop([this](QWidget&) { mWindow.reset(); });

  Click(id::kSave);

  EXPECT_EQ(mWindow, nullptr);
}

TEST_F(Transcripts, PortThatIsClosed_LeavesTheTextToBeSaved) {
  Open();
  Show("A", u"A");

  ASSERT_TRUE(mWindow->SetDevice(nullptr).IsOK());

  EXPECT_EQ(GetText(), u"A");
  EXPECT_TRUE(Get(id::kSave).isEnabled());
  EXPECT_TRUE(Get(id::kPause).isEnabled());
}

} // namespace krgui
