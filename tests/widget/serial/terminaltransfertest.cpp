// What the serial terminal shows and counts while a file goes out: the echo whole and in order, the transcript's pace,
// choices that change under way, loopback, and files that end early.

#include "logic/serial/transcriptencoder.h"
#include "numberedlines.h"
#include "terminalfilefixture.h"

#include <QAbstractEventDispatcher>
#include <QThread>

#include <filesystem>

namespace krgui {

namespace {

using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;

/// So many lines of twelve bytes.
std::string MakeLines(int aCount) {
  return krtest::MakeNumberedLines(static_cast<std::size_t>(aCount) * 12, 10'000);
}

class Transfers : public TerminalFileTest {
protected:
  /// What the transcript shows of bytes.
  static std::u16string Encode(const std::string& aBytes, DisplayFormat aFormat) {
    TranscriptEncoder encoder;
    RollingEdit edit(nullptr);
    encoder.SetDisplayFormat(edit, aFormat);
    for (const char byte : aBytes) {
      const auto code = static_cast<std::uint8_t>(byte);
      encoder.RenderBytes(&code, 1);
      if (encoder.GetUnflushedBytes() == 1000)
        encoder.FlushPending(edit);
    }
    encoder.FlushPending(edit);
    return std::u16string(edit.GetText());
  }
  /// Receives a batch and handles whatever that has posted.
  void ReceiveBatch(const std::string& aBytes) {
    mLine->Receive(aBytes);
    ASSERT_TRUE(AwaitOutsideTheWindow([&] { return mLine->CountWaiting() == 0; }));
    const int reads = mLine->CountReads();
    // The thread has asked for a flush before it reads again.
    ASSERT_TRUE(AwaitOutsideTheWindow([&] { return mLine->CountReads() > reads; }));
    while (QThread::currentThread()->eventDispatcher()->processEvents(QEventLoop::AllEvents))
      continue;
  }
};

struct EchoRow {
  const char* name;
  int control;
  DisplayFormat format;
  int lines;
};

/// Each makes more than the encoder holds, and less than the transcript does.
const EchoRow kEchoRows[] = {
    {"ASCII", id::kShowASCII, DisplayFormat::ASCII, 2000},
    {"hexadecimal", id::kShowHexadecimal, DisplayFormat::Hexadecimal, 800},
    {"hybrid", id::kShowHybrid, DisplayFormat::Hybrid, 550},
};

} // namespace

TEST_F(Transfers, FileThatGoesOutFasterThanTheWindowTakesIt_IsEchoedWhole) {
  Open();
  for (const EchoRow& row : kEchoRows) {
    Click(row.control);
    const std::string bytes = MakeLines(row.lines);
    const std::size_t before = mLine->GetSent().size();

    SendFile(MakeFile(bytes));
    ASSERT_TRUE(AwaitOutsideTheWindow([&] { return mLine->GetSent().size() == before + bytes.size(); }));
    ASSERT_TRUE(AwaitEnd());

    const std::u16string echo = Encode(bytes, row.format);
    ASSERT_GT(echo.size(), TranscriptEncoder::kPendingLimit) << row.name;
    const std::u16string text = GetText();
    EXPECT_EQ(text.substr(0, echo.size()), echo) << row.name;
    EXPECT_EQ(text.substr(echo.size(), 3), u"\r\n\n") << row.name << ": the statistics follow";
  }
}

TEST_F(Transfers, FileThatIsStopped_IsSummedUpBehindItsEcho) {
  Open();
  mLine->SetRoom(100);
  SendFile(MakeFile("the whole echo" + std::string(1000, 'x')));
  ASSERT_TRUE(AwaitOutsideTheWindow([&] { return mLine->GetSent().size() == 100; }));

  Click(id::kStop);

  ASSERT_TRUE(AwaitEnd());
  EXPECT_TRUE(GetUtf8().starts_with("the whole echo")) << GetUtf8();
  EXPECT_THAT(GetUtf8(), EndsWith("100/1014 successfully transmitted bytes (9.862%)\n\r\n"));
}

TEST_F(Transfers, UnderWay_EveryTenthBatchIsShown) {
  Open();
  Check(id::kEcho, false);
  mLine->SetRoom(0);
  SendFile(MakeFile("hello"));
  const std::string batch(64, 'A');

  for (int count = 1; count <= 9; ++count) {
    ReceiveBatch(batch);
    EXPECT_EQ(GetText(), u"") << count;
  }
  ReceiveBatch(batch);

  EXPECT_TRUE(AwaitText(std::u16string(640, u'A')));
}

TEST_F(Transfers, Ended_EveryBatchIsShownAgain) {
  Open();
  Check(id::kEcho, false);
  SendFile(MakeFile("hello"));
  ASSERT_TRUE(AwaitEnd());
  Click(id::kClear);

  mLine->Receive("A");

  EXPECT_TRUE(AwaitText(u"A"));
}

TEST_F(Transfers, ClearUnderWay_NothingOfBeforeShowsUpAgain) {
  Open();
  Check(id::kEcho, false);
  mLine->SetRoom(0);
  SendFile(MakeFile("hello"));
  const std::string batch(64, 'A');
  ReceiveBatch(batch);

  Click(id::kClear);
  Click(id::kStop);

  ASSERT_TRUE(AwaitEnd());
  EXPECT_THAT(GetUtf8(), Not(HasSubstr(batch)));
  EXPECT_THAT(GetUtf8(), HasSubstr("0/5 successfully"));
}

TEST_F(Transfers, EchoSwitchedOffUnderWay_IsOffForWhatFollows) {
  Open();
  mLine->SetRoom(256);
  SendFile(MakeFile(std::string(256, 'a') + std::string(256, 'b') + std::string(256, 'c')));
  ASSERT_TRUE(AwaitOutsideTheWindow([&] { return mLine->GetSent().size() == 256; }));

  Check(id::kEcho, false);
  mLine->SetRoom(SIZE_MAX);

  ASSERT_TRUE(AwaitEnd());
  EXPECT_THAT(GetUtf8(), HasSubstr(std::string(256, 'a')));
  EXPECT_THAT(GetUtf8(), Not(HasSubstr("cccc")));
}

TEST_F(Transfers, ValidationChosenUnderWay_IsForTheNextFile) {
  Open();
  mLine->SetRoom(0);
  SendFile(MakeFile("hello"));

  Check(id::kValidation, true);
  mLine->SetRoom(SIZE_MAX);
  ASSERT_TRUE(AwaitEnd());
  EXPECT_THAT(GetUtf8(), Not(HasSubstr("loopback")));

  SendFile(MakeFile("hello"));
  ASSERT_TRUE(AwaitEnd());
  EXPECT_THAT(GetUtf8(), HasSubstr("0/5 bytes received from loopback (0%)"));
}

TEST_F(Transfers, LoopbackSwitchedOn_CountsFromTheNextRefreshOfTheControls) {
  mLine->SetLoopback(true);
  Open();
  Check(id::kEcho, false);
  Check(id::kValidation, true);
  Click(id::kLoopback);
  ASSERT_THAT(mDevice.written, testing::ElementsAre("Uart0Loopback=true"));

  SendFile(MakeFile("hello"));
  ASSERT_TRUE(AwaitEnd());
  EXPECT_THAT(GetUtf8(), HasSubstr("0/5 bytes received from loopback (0%)"));

  Click(id::kOther); // Reads the parameter again.
  SendFile(MakeFile("hello"));
  ASSERT_TRUE(AwaitEnd());
  EXPECT_THAT(GetUtf8(), HasSubstr("5/5 bytes received from loopback (100%)"));
}

TEST_F(Transfers, EmptyFile_IsSentAsNothing) {
  Open();

  SendFile(MakeFile(""));

  ASSERT_TRUE(AwaitEnd());
  EXPECT_EQ(mLine->GetSent(), "");
  EXPECT_THAT(GetUtf8(), HasSubstr("0/0 successfully transmitted bytes (0%)\n\r\n"));
  EXPECT_FALSE(Get(id::kProgress).isVisible());
}

TEST_F(Transfers, FileThatVanishesUnderWay_IsSentFromWhatIsOpen) {
  Open();
  const std::string bytes = MakeLines(100);
  mLine->SetRoom(256);
  const std::string file = MakeFile(bytes);
  SendFile(file);
  ASSERT_TRUE(WaitFor([&] { return mLine->GetSent().size() == 256; }));

  std::filesystem::remove(file);
  mLine->SetRoom(SIZE_MAX);

  ASSERT_TRUE(AwaitEnd());
  EXPECT_EQ(mLine->GetSent(), bytes);
}

TEST_F(Transfers, FileCutShortUnderWay_EndsWhereItEnds) {
  Open();
  mLine->SetRoom(256);
  const std::string file = MakeFile(std::string(2000, 'x'));
  SendFile(file);
  ASSERT_TRUE(WaitFor([&] { return mLine->GetWrites().size() == 2; }));

  std::filesystem::resize_file(file, 600);
  mLine->SetRoom(SIZE_MAX);

  ASSERT_TRUE(AwaitEnd());
  EXPECT_EQ(mLine->GetSent().size(), 600U);
  EXPECT_THAT(GetUtf8(), HasSubstr("600/2000 successfully transmitted bytes (30%)\n\r\n"));
}

TEST_F(Transfers, PortLostUnderWay_EndsTheTransferAndTells) {
  Open();
  mLine->SetRoom(256);
  SendFile(MakeFile(std::string(2000, 'x')));
  ASSERT_TRUE(WaitFor([&] { return mLine->GetSent().size() == 256; }));

  mLine->Lose();

  ASSERT_TRUE(AwaitEnd());
  EXPECT_TRUE(WaitFor([&] { return GetStatus() == "Connection lost"; }));
  EXPECT_THAT(GetUtf8(), HasSubstr("256/2000 successfully transmitted bytes (12.8%)\n\r\n"));
  EXPECT_FALSE(Get(id::kProgress).isVisible());
}

} // namespace krgui
