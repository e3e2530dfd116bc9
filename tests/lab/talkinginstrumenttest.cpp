// The instrument behind a simulated serial port: what it answers, and what it does not.

#include "simulation/serial/talkinginstrument.h"

#include <gmock/gmock.h>

#include <array>
#include <string>

using krtransport::TalkingInstrument;
using testing::HasSubstr;
using testing::StartsWith;

namespace {

constexpr std::uint64_t kSecondNs = 1000000000;

class TalkingInstrumentTest : public testing::Test {
protected:
  TalkingInstrumentTest() { mInstrument.Open(9600, {}); }

  std::size_t Tell(const std::string& aText) {
    return mInstrument.Take(reinterpret_cast<const std::uint8_t*>(aText.data()), aText.size(), mNowNs);
  }
  std::string Hear() {
    std::array<char, 65536> bytes;
    const std::size_t size = mInstrument.Give(reinterpret_cast<std::uint8_t*>(bytes.data()), bytes.size(), mNowNs);
    return {bytes.data(), size};
  }
  std::string Ask(const std::string& aText) {
    EXPECT_EQ(Tell(aText), aText.size());
    return Hear();
  }

  std::uint64_t mNowNs = 5 * kSecondNs;
  TalkingInstrument mInstrument{"SIM-0001-Serial0"};
};

} // namespace

TEST_F(TalkingInstrumentTest, Commands_AreAnswered) {
  struct Row {
    const char* command;
    const char* answer;
  };
  constexpr Row kRows[] = {
      {"*IDN?\r", "Simulated Instrument,SIM-0001-Serial0\r\n"},
      {"*idn?\n", "Simulated Instrument,SIM-0001-Serial0\r\n"},
      {"VALUE?\r\n", "VALUE 20\r\n"},
      {"VALUE -5\r", "OK\r\n"},
      {"value?\r", "VALUE -5\r\n"},
      {"VALUE 9999\r", "OK\r\n"},
      {"VALUE 10000\r", "ERROR VALUE is a whole number from -9999 to 9999\r\n"},
      {"VALUE 1.5\r", "ERROR VALUE is a whole number from -9999 to 9999\r\n"},
      {"VALUE\r", "ERROR VALUE is a whole number from -9999 to 9999\r\n"},
      {"VALUE?\r", "VALUE 9999\r\n"},
      {"REPORT?\r", "REPORT OFF\r\n"},
      {"REPORT MAYBE\r", "ERROR REPORT is ON or OFF\r\n"},
      {"nonsense\r", "?\r\n"},
      {"*IDN? now\r", "?\r\n"},
      {" VALUE?\r", "?\r\n"},
      {"\r\n\r\n", ""},
  };

  for (const Row& row : kRows)
    EXPECT_EQ(Ask(row.command), row.answer) << row.command;
}

TEST_F(TalkingInstrumentTest, Help_NamesEveryCommand) {
  const std::string help = Ask("HELP\r");

  for (const char* command : {"*IDN?", "VALUE?", "VALUE n", "REPORT?", "REPORT ON|OFF", "HELP"})
    EXPECT_THAT(help, HasSubstr(command));
  EXPECT_LE(help.size(), 512u) << "as much as the room that it waits for";
}

TEST_F(TalkingInstrumentTest, Command_InPieces_IsAnsweredWhenItsEndCame) {
  EXPECT_EQ(Ask("VAL"), "") << "nothing is echoed";
  EXPECT_EQ(Ask("UE?"), "");

  EXPECT_EQ(Ask("\r"), "VALUE 20\r\n");
}

TEST_F(TalkingInstrumentTest, SeveralCommandsAtOnce_AreAnsweredInOrder) {
  EXPECT_EQ(Ask("VALUE 1\rVALUE?\rVALUE 2\rVALUE?\r"), "OK\r\nVALUE 1\r\nOK\r\nVALUE 2\r\n");
}

TEST_F(TalkingInstrumentTest, CommandThatNeverEnds_IsUnknownAndForgotten) {
  EXPECT_EQ(Ask(std::string(100000, 'A')), "");

  EXPECT_EQ(Ask("\r"), "?\r\n");
  EXPECT_EQ(Ask("VALUE?\r"), "VALUE 20\r\n");
}

TEST_F(TalkingInstrumentTest, AnswersThatNobodyTakes_HoldCommandsBackAndLoseNone) {
  std::string commands;
  std::string expected;
  for (int i = 0; i < 1000; ++i) {
    commands += "VALUE " + std::to_string(i) + "\rVALUE?\r";
    expected += "OK\r\nVALUE " + std::to_string(i) + "\r\n";
  }
  std::string heard;
  int rounds = 0;

  while (!commands.empty() && ++rounds < 1000) {
    commands.erase(0, Tell(commands));
    heard += Hear();
  }

  EXPECT_GT(rounds, 1);
  EXPECT_EQ(heard, expected);
}

TEST_F(TalkingInstrumentTest, Report_SwitchedOn_ComesEverySecond) {
  ASSERT_EQ(Ask("REPORT ON\r"), "OK\r\n");
  EXPECT_EQ(mInstrument.GetNextNs(), mNowNs + kSecondNs);
  mNowNs += kSecondNs - 1;
  EXPECT_EQ(Hear(), "");

  mNowNs += 1;

  EXPECT_EQ(Hear(), "REPORT 1 VALUE 20\r\n");
  EXPECT_EQ(Hear(), "");
  EXPECT_EQ(mInstrument.GetNextNs(), mNowNs + kSecondNs);
  EXPECT_EQ(Ask("REPORT?\r"), "REPORT ON\r\n");
}

TEST_F(TalkingInstrumentTest, Report_AfterALongPause_ComesOnce) {
  ASSERT_EQ(Ask("REPORT ON\r"), "OK\r\n");

  mNowNs += 10 * kSecondNs + 1;

  EXPECT_EQ(Hear(), "REPORT 10 VALUE 20\r\n");
  EXPECT_EQ(mInstrument.GetNextNs(), mNowNs - 1 + kSecondNs);
}

TEST_F(TalkingInstrumentTest, Report_SwitchedOff_ComesNoMore) {
  ASSERT_EQ(Ask("REPORT ON\rREPORT OFF\r"), "OK\r\nOK\r\n");

  mNowNs += 100 * kSecondNs;

  EXPECT_EQ(Hear(), "");
  EXPECT_EQ(mInstrument.GetNextNs(), krtransport::ILineEnd::kNever);
}

TEST_F(TalkingInstrumentTest, PortOpenedAnew_ForgetsHalfACommandAndKeepsWhatWasSet) {
  ASSERT_EQ(Ask("VALUE 7\rVAL"), "OK\r\n");
  Tell("UE?\r");

  mInstrument.Close();
  mInstrument.Open(9600, {});

  EXPECT_EQ(Hear(), "") << "an answer to nobody";
  EXPECT_EQ(Ask("VALUE?\r"), "VALUE 7\r\n");
}
