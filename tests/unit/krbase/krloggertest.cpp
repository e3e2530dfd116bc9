#include "krbase/krlogger.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <string>
#include <thread>
#include <vector>

using testing::HasSubstr;

namespace {

constexpr KrLogSite kSite{"Wnd::DoEvents", "wnd", 223};
constexpr KrLogSite kSiteWithoutLine{"Wnd::Show", "wnd", 0};

/// Restores the level, so that the tests do not depend on their order.
class KrLoggerTest : public testing::Test {
protected:
  ~KrLoggerTest() override { KrLogger::SetLevel(mLevelBefore); }

  /// What a record leaves on standard error.
  static std::string Write(KrLogLevel aLevel, const KrLogSite& aSite, const KrString& aText) {
    testing::internal::CaptureStderr();
    KrLogger("KrGUILib").Log(aLevel, aSite, aText);
    return testing::internal::GetCapturedStderr();
  }

private:
  KrLogLevel mLevelBefore = KrLogger::GetLevel();
};

class LateWriter {
public:
  ~LateWriter() { KrLogger("Late").Log(KrLogLevel::Error, kSite, "Written while the process ends."); }
};

std::vector<std::string> GetTexts(const KrLogCapture& aCapture) {
  std::vector<std::string> texts;
  for (const KrLogRecord& record : aCapture.GetRecords())
    texts.push_back(record.text.ToUtf8());
  return texts;
}

} // namespace

TEST_F(KrLoggerTest, Level_IsWarningUntilItIsSet) {
  EXPECT_EQ(KrLogger::GetLevel(), KrLogLevel::Warning);
}

TEST_F(KrLoggerTest, RecordBelowTheLevel_IsNotWritten) {
  KrLogger::SetLevel(KrLogLevel::Warning);

  EXPECT_EQ(Write(KrLogLevel::Info, kSite, "quiet"), "");
  EXPECT_EQ(Write(KrLogLevel::Debug, kSite, "quiet"), "");
}

TEST_F(KrLoggerTest, RecordAtOrAboveTheLevel_IsWritten) {
  KrLogger::SetLevel(KrLogLevel::Warning);

  EXPECT_THAT(Write(KrLogLevel::Warning, kSite, "loud"), HasSubstr("loud"));
  EXPECT_THAT(Write(KrLogLevel::Error, kSite, "loud"), HasSubstr("loud"));
}

TEST_F(KrLoggerTest, LevelDebug_LetsEverythingThrough) {
  KrLogger::SetLevel(KrLogLevel::Debug);

  EXPECT_EQ(KrLogger::GetLevel(), KrLogLevel::Debug);
  EXPECT_THAT(Write(KrLogLevel::Debug, kSite, "detail"), HasSubstr("detail"));
}

TEST_F(KrLoggerTest, Line_ShowsTimeLevelChannelFunctionFileLineAndText) {
  const std::string line = Write(KrLogLevel::Error, kSite, "The window is not currently open.");

  EXPECT_THAT(line, testing::MatchesRegex("[0-9]{4}-[0-9]{2}-[0-9]{2} [0-9]{2}:[0-9]{2}:[0-9]{2}\\.[0-9]{3} error "
                                          "\\[KrGUILib\\] Wnd::DoEvents \\(wnd:223\\): "
                                          "The window is not currently open\\.\n"));
}

TEST_F(KrLoggerTest, LineNumber0_LeavesOutFileAndLine) {
  const std::string line = Write(KrLogLevel::Error, kSiteWithoutLine, "text");

  EXPECT_THAT(line, HasSubstr("[KrGUILib] Wnd::Show: text\n"));
}

TEST_F(KrLoggerTest, FormatSyntaxInTheText_IsWrittenAsItIs) {
  const std::string line = Write(KrLogLevel::Error, kSite, "{} {0} {:s} {{ %v %s %n");

  EXPECT_THAT(line, HasSubstr(": {} {0} {:s} {{ %v %s %n\n"));
}

TEST_F(KrLoggerTest, ControlCharactersInTheText_DoNotLeaveTheLine) {
  const std::string line = Write(KrLogLevel::Error, kSite,
                                 "first\nsecond\r\tthird \x1B[31mred \xC2\x9B"
                                 "2J\x7F");

  EXPECT_THAT(line, HasSubstr(": first\\nsecond\\x0d\\x09third \\x1b[31mred \\x9b2J\\x7f\n"));
}

TEST_F(KrLoggerTest, MalformedBytesInTheText_AreReplaced) {
  const std::string line = Write(KrLogLevel::Error, kSite, "a\x9Bz");

  EXPECT_THAT(line, HasSubstr("a\xEF\xBF\xBDz\n"));
}

TEST_F(KrLoggerTest, TextOfTheMostBytes_IsWrittenWhole) {
  const std::string text(16384, 'x');

  EXPECT_THAT(Write(KrLogLevel::Error, kSite, text), HasSubstr(": " + text + "\n"));
}

TEST_F(KrLoggerTest, LongerText_IsCutBeforeAWholeCharacterWithItsLength) {
  const std::string beginning(16383, 'x');

  const std::string line = Write(KrLogLevel::Error, kSite, beginning + "\xC3\xB6" + std::string(10'000'000, 'y'));

  EXPECT_THAT(line, HasSubstr(": " + beginning + "… (the first 16383 of 10016385 bytes)\n"));
}

TEST_F(KrLoggerTest, NullFunctionAndFile_AreEmptyTexts) {
  const std::string line = Write(KrLogLevel::Error, {nullptr, nullptr, 7}, "text");

  EXPECT_THAT(line, HasSubstr("[KrGUILib]  (:7): text\n"));
}

TEST_F(KrLoggerTest, StaticDestruction_StillWrites) {
  const auto endWithLateWriter = [] {
    // Made before the first record, so that it is destroyed after all that a record makes.
    static LateWriter lateWriter;
    KrLogger("Early").Log(KrLogLevel::Error, kSite, "First record.");
    std::exit(0);
  };

  EXPECT_EXIT(endWithLateWriter(), testing::ExitedWithCode(0), "Written while the process ends");
}

TEST_F(KrLoggerTest, Capture_ReceivesTheWholeRecord) {
  KrLogCapture capture;

  KrLogger("KrGUILib").Log(KrLogLevel::Warning, kSite, "two\nlines");

  const std::vector<KrLogRecord> records = capture.GetRecords();
  ASSERT_EQ(records.size(), 1u);
  EXPECT_EQ(records[0].level, KrLogLevel::Warning);
  EXPECT_EQ(records[0].channel, "KrGUILib");
  EXPECT_EQ(records[0].function, "Wnd::DoEvents");
  EXPECT_EQ(records[0].file, "wnd");
  EXPECT_EQ(records[0].line, 223);
  EXPECT_EQ(records[0].text, "two\nlines");
}

TEST_F(KrLoggerTest, Capture_ReceivesEveryLevelInOrder) {
  KrLogger::SetLevel(KrLogLevel::Error);
  KrLogCapture capture;
  const KrLogger logger("KrGUILib");

  logger.Log(KrLogLevel::Error, kSite, "error");
  logger.Log(KrLogLevel::Debug, kSite, "debug");
  logger.Log(KrLogLevel::Info, kSite, "info");

  EXPECT_THAT(GetTexts(capture), testing::ElementsAre("error", "debug", "info"));
}

TEST_F(KrLoggerTest, CapturedRecord_IsNotWritten) {
  KrLogCapture capture;

  EXPECT_EQ(Write(KrLogLevel::Error, kSite, "captured"), "");
}

TEST_F(KrLoggerTest, EndOfCapture_LetsRecordsBeWrittenAgain) {
  { KrLogCapture capture; }

  EXPECT_THAT(Write(KrLogLevel::Error, kSite, "written"), HasSubstr("written"));
}

TEST_F(KrLoggerTest, NestedCapture_IsTheOnlyOneToReceive) {
  KrLogCapture outer;
  const KrLogger logger("KrGUILib");

  {
    KrLogCapture inner;
    logger.Log(KrLogLevel::Error, kSite, "inner");
    EXPECT_THAT(GetTexts(inner), testing::ElementsAre("inner"));
  }
  logger.Log(KrLogLevel::Error, kSite, "outer");

  EXPECT_THAT(GetTexts(outer), testing::ElementsAre("outer"));
}

TEST_F(KrLoggerTest, OuterCaptureEndsFirst_InnerGoesOnReceiving) {
  auto outer = std::make_unique<KrLogCapture>();
  KrLogCapture inner;

  outer.reset();
  KrLogger("KrGUILib").Log(KrLogLevel::Error, kSite, "inner");

  EXPECT_THAT(GetTexts(inner), testing::ElementsAre("inner"));
}

TEST_F(KrLoggerTest, Contains_WantsLevelAndExactText) {
  KrLogCapture capture;

  KrLogger("KrGUILib").Log(KrLogLevel::Error, kSite, "The window is not currently open.");

  EXPECT_TRUE(capture.Contains(KrLogLevel::Error, "The window is not currently open."));
  EXPECT_FALSE(capture.Contains(KrLogLevel::Warning, "The window is not currently open."));
  EXPECT_FALSE(capture.Contains(KrLogLevel::Error, "The window is not currently open"));
}

TEST_F(KrLoggerTest, Clear_ForgetsTheRecords) {
  KrLogCapture capture;
  KrLogger("KrGUILib").Log(KrLogLevel::Error, kSite, "old");

  capture.Clear();
  KrLogger("KrGUILib").Log(KrLogLevel::Error, kSite, "new");

  EXPECT_THAT(GetTexts(capture), testing::ElementsAre("new"));
}

TEST_F(KrLoggerTest, RecordsOfSeveralThreads_AreAllCaptured) {
  constexpr int kThreads = 4;
  constexpr int kRecordsEach = 250;
  KrLogCapture capture;

  {
    std::vector<std::jthread> threads;
    for (int thread = 0; thread < kThreads; ++thread)
      threads.emplace_back([] {
        for (int record = 0; record < kRecordsEach; ++record)
          KrLogger("KrGUILib").Log(KrLogLevel::Info, kSite, "text");
      });
  }

  EXPECT_EQ(capture.GetRecords().size(), std::size_t{kThreads * kRecordsEach});
}

TEST_F(KrLoggerTest, LinesOfSeveralThreads_DoNotMix) {
  constexpr int kThreads = 4;
  constexpr int kRecordsEach = 100;
  const std::string text(500, 'x');

  testing::internal::CaptureStderr();
  {
    std::vector<std::jthread> threads;
    for (int thread = 0; thread < kThreads; ++thread)
      threads.emplace_back([&text] {
        for (int record = 0; record < kRecordsEach; ++record)
          KrLogger("KrGUILib").Log(KrLogLevel::Error, kSite, text);
      });
  }
  const std::string output = testing::internal::GetCapturedStderr();

  const std::string lineEnd = "): " + text + "\n";
  int wholeLines = 0;
  for (std::size_t end = output.find(lineEnd); end != std::string::npos; end = output.find(lineEnd, end + 1))
    ++wholeLines;
  EXPECT_EQ(wholeLines, kThreads * kRecordsEach);
  EXPECT_EQ(std::count(output.begin(), output.end(), '\n'), kThreads * kRecordsEach);
}
