#include "camerafile/answermatching.h"

#include <gmock/gmock.h>

#include <string>

namespace krcamerabridge {
namespace {

using namespace std::string_literals;

CommandTemplate Parse(std::string_view aText, bool aIsBinary = false) {
  std::vector<std::string> problems;
  CommandTemplate parsed = ParseCommandTemplate(aText, aIsBinary, problems);
  EXPECT_THAT(problems, testing::IsEmpty()) << aText;
  return parsed;
}

constexpr ChecksumRule kSum = {.kind = ChecksumKind::Sum8};

TEST(AnswerMatching, Value_StandsBetweenFixedTexts) {
  const auto content = MatchAnswer(Parse("GAIN={value:d}dB\\r"), kSum, "GAIN= 12dB\r");

  ASSERT_TRUE(content);
  EXPECT_EQ(content->value, WireValue(std::int64_t{12}));
}

TEST(AnswerMatching, OtherTexts_AreNoAnswer) {
  const CommandTemplate answer = Parse("GAIN={value:d}\\r");

  for (const char* const other :
       {"", "\r", "GAIN=\r", "GAIN=1", "GAIN=1x\r", "AGAIN=1\r", "GAIN=1\r\r", "GAIN=1\rGAIN=2\r"})
    EXPECT_FALSE(MatchAnswer(answer, kSum, other)) << other;
}

TEST(AnswerMatching, AWrongSum_IsNoAnswer) {
  const CommandTemplate answer = Parse("{value:d}*{check:hex2}\\r");

  EXPECT_TRUE(MatchAnswer(answer, kSum, "7*61\r")); // 0x37 + 0x2A is 0x61.
  EXPECT_FALSE(MatchAnswer(answer, kSum, "8*61\r"));
  EXPECT_FALSE(MatchAnswer(answer, kSum, "7*60\r"));
}

TEST(AnswerMatching, WhatIsSkipped_MayBeAnything) {
  const auto content = MatchAnswer(Parse("{skip},{skip:2}{value:d};{skip}\\r"), kSum, "any thing,xx5;more\r");

  ASSERT_TRUE(content);
  EXPECT_EQ(content->value, WireValue(std::int64_t{5}));
}

TEST(AnswerMatching, Errors_HaveTheirCodeAndWords) {
  const auto content = MatchAnswer(Parse("ERR {code:d} {text}\\r"), kSum, "ERR 7 lens cap is on\r");

  ASSERT_TRUE(content);
  EXPECT_EQ(content->code, 7);
  EXPECT_EQ(content->text, "lens cap is on");
}

TEST(AnswerMatching, AWrongLength_IsNoAnswer) {
  const CommandTemplate answer = Parse("02 {length:u8} {value:text}", true);

  EXPECT_TRUE(MatchAnswer(answer, kSum,
                          "\x02\x03"s
                          "abc"));
  EXPECT_FALSE(MatchAnswer(answer, kSum,
                           "\x02\x04"s
                           "abc"));
}

struct MeasureRow {
  const char* name;
  const char* answer;
  std::string received;
  MessageSize::State state;
  std::size_t size;
};

void PrintTo(const MeasureRow& aRow, std::ostream* aStream) {
  *aStream << aRow.name;
}

using State = MessageSize::State;

const MeasureRow kMeasured[] = {
    {"FixedAndWhole", "06 {value:u16be}", "\x06\x01\x02\x03"s, State::Known, 3},
    {"FixedAndShort", "06 {value:u16be}", "\x06\x01"s, State::More, 0},
    {"AnotherBeginning", "06 {value:u16be}", "\x15"s, State::Never, 0},
    {"LengthAndWhole", "02 {length:u8-1} {value} {check:u8}", "\x02\x02xx\x00\x00"s, State::Known, 5},
    {"LengthNotThereYet", "02 {length:u8} {value}", "\x02"s, State::More, 0},
    {"LengthAndShort", "02 {length:u8} {value}", "\x02\x05xx"s, State::More, 0},
    {"LengthBelowNothing", "02 {length:u8+5} {value}", "\x02\x04"s, State::Never, 0},
    {"LengthBeyondAllLimits", "02 {length:u16be} {value}", "\x02\xFF\xFF"s, State::Never, 0},
    {"Ended", "02 {value} 03", "\x02xyz\x03zz"s, State::Known, 5},
    {"EndInAChecksum", "02 {value} {check:u8} 03", "\x02\x03"s, State::More, 0},
    {"EndBehindAChecksum", "02 {value} {check:u8} 03", "\x02x\x03\x03"s, State::Known, 3},
    {"NotEnded", "02 {value} 03", "\x02xyz"s, State::More, 0},
    {"NeverEnded", "02 {value} 03", "\x02"s + std::string(5000, 'x'), State::Never, 0},
};

TEST(AnswerMatching, MessagesOfAtLeastALength_EndAtALaterEnding) {
  const CommandTemplate answer = Parse("02 {value} 03", true);

  const MessageSize size = MeasureMessage(answer, "\x02x\x03y\x03z", 4);

  ASSERT_EQ(size.state, State::Known);
  EXPECT_EQ(size.size, 5U);
  EXPECT_EQ(MeasureMessage(answer, "\x02x\x03y\x03z", 6).state, State::More);
  EXPECT_EQ(MeasureMessage(Parse("06 {value:u8}", true), "\x06\x01", 3).state, State::Never);
}

class MessageMeasuring : public testing::TestWithParam<MeasureRow> {};

TEST_P(MessageMeasuring, SaysHowMuchIsNeeded) {
  const MeasureRow& row = GetParam();

  const MessageSize size = MeasureMessage(Parse(row.answer, true), row.received);

  EXPECT_EQ(size.state, row.state);
  if (row.state == State::Known) {
    EXPECT_EQ(size.size, row.size);
  }
}

INSTANTIATE_TEST_SUITE_P(All, MessageMeasuring, testing::ValuesIn(kMeasured),
                         [](const testing::TestParamInfo<MeasureRow>& aInfo) { return aInfo.param.name; });

} // namespace
} // namespace krcamerabridge
