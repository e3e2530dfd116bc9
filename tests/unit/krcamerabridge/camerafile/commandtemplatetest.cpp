#include "camerafile/commandtemplate.h"
#include "camerafile/answermatching.h"

#include <gmock/gmock.h>

#include <string>

namespace krcamerabridge {
namespace {

using namespace std::string_literals;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

CommandTemplate Parse(std::string_view aText, bool aIsBinary = false) {
  std::vector<std::string> problems;
  CommandTemplate parsed = ParseCommandTemplate(aText, aIsBinary, problems);
  EXPECT_THAT(problems, IsEmpty()) << aText;
  return parsed;
}

std::string ParseLiteral(std::string_view aText, bool aIsBinary = false) {
  return std::string(GetEnding(Parse(aText, aIsBinary)));
}

std::vector<std::string> GetProblems(std::string_view aText, bool aIsBinary = false) {
  std::vector<std::string> problems;
  ParseCommandTemplate(aText, aIsBinary, problems);
  return problems;
}

TEST(CommandTemplate, EscapesInTexts_AreBytes) {
  EXPECT_EQ(ParseLiteral(R"(A\r\n\t\0\\\x02\xfF)"), "A\r\n\t\0\\\x02\xFF"s);
  EXPECT_EQ(ParseLiteral("{{A}}"), "{A}");
  EXPECT_EQ(ParseLiteral("\xC3\xBF\xC2\x80"), "\xFF\x80"s); // What YAML makes of "\xFF\x80" in double quotes.
}

TEST(CommandTemplate, BinaryOnes_ArePairsOfDigitsAndTexts) {
  EXPECT_EQ(ParseLiteral("02 fF \"R\\x00\" 'it' 1020", true), "\x02\xFFR\0it\x10\x20"s);
}

TEST(CommandTemplate, Placeholders_HaveNameAndFormat) {
  const CommandTemplate parsed = Parse("A{value:hex4}B{length:u8-2}{Selector:d2}{skip:3}{skip}{check}");

  ASSERT_EQ(parsed.size(), 8U);
  EXPECT_EQ(parsed[1].kind, TemplatePart::Kind::Value);
  EXPECT_EQ(parsed[1].format, (WireFormat{.kind = WireKind::Hex, .size = 4}));
  EXPECT_EQ(parsed[3].kind, TemplatePart::Kind::Length);
  EXPECT_EQ(parsed[3].added, -2);
  EXPECT_EQ(parsed[4].kind, TemplatePart::Kind::Feature);
  EXPECT_EQ(parsed[4].text, "Selector");
  EXPECT_EQ(GetFixedPartSize(parsed[5]), 3U);
  EXPECT_EQ(GetFixedPartSize(parsed[6]), 0U);
  EXPECT_EQ(parsed[7].kind, TemplatePart::Kind::Check);
}

TEST(CommandTemplate, Mistakes_AreAllTold) {
  EXPECT_THAT(GetProblems("{value:x}}\\q"),
              ElementsAre(HasSubstr("{value:x} has no format"), HasSubstr("\"}}\""), HasSubstr("backslash")));
  EXPECT_THAT(GetProblems("{value"), ElementsAre(HasSubstr("has no \"}\"")));
  EXPECT_THAT(GetProblems("{}"), ElementsAre(HasSubstr("has no name")));
  EXPECT_THAT(GetProblems("{skip:0}"), ElementsAre(HasSubstr("skips no number of bytes")));
  EXPECT_THAT(GetProblems("{length:u8+300}"), ElementsAre(HasSubstr("adds no number")));
  EXPECT_THAT(GetProblems("\\x1"), ElementsAre(HasSubstr("backslash")));
  EXPECT_THAT(GetProblems("€"), ElementsAre(HasSubstr("is no byte")));
  EXPECT_THAT(GetProblems("0G \"open", true),
              ElementsAre(HasSubstr("\"0G\" is no pair"), HasSubstr("has no quote at its end")));
}

TEST(CommandTemplate, TooManyParts_AreRefused) {
  std::string text;
  for (int i = 0; i < 40; ++i)
    text += "a{value}";

  EXPECT_THAT(GetProblems(text), ElementsAre(HasSubstr("more than 64 parts")));
}

TEST(CommandTemplate, Built_HasItsLengthAndItsSum) {
  const ChecksumRule rule{.kind = ChecksumKind::Sum8, .from = 1};
  // Four bytes follow the length; the sum leaves out the first byte: 0x04 + 0x41 + 0x42 is 0x87.
  EXPECT_EQ(BuildCommand(Parse("02 {length:u8} 'AB' {check:u8} 03", true), rule), "\x02\x04"s
                                                                                  "AB\x87\x03");
  EXPECT_EQ(BuildCommand(Parse("02 {length:u8-1} 'AB' {check:u8} 03", true), rule), "\x02\x03"s
                                                                                    "AB\x86\x03");
  // 0x49 + 0x44 + 0x3F + 0x2A is 0xF6.
  EXPECT_EQ(BuildCommand(Parse("ID?*{check:hex2}\\r"), {.kind = ChecksumKind::Sum8}), "ID?*F6\r");
}

TEST(CommandTemplate, SumWithAGap_LeavesOutWhatStandsRightBeforeIt) {
  const ChecksumRule rule{.kind = ChecksumKind::Xor8, .from = 1, .gap = 1};
  const CommandTemplate sentence = Parse("$ID?*{check:hex2}\\r");

  // 0x49 ^ 0x44 ^ 0x3F is 0x32.
  EXPECT_EQ(BuildCommand(sentence, rule), "$ID?*32\r");
  EXPECT_TRUE(MatchAnswer(sentence, rule, "$ID?*32\r"));
  EXPECT_FALSE(MatchAnswer(sentence, rule, "$ID?*18\r"));
  // One that is left with nothing is that of nothing.
  EXPECT_EQ(BuildCommand(Parse("*{check:hex2}"), {.kind = ChecksumKind::Sum8, .from = 2, .gap = 2}), "*00");
}

TEST(CommandTemplate, BuiltBeyondWhatItsLengthCanSay_IsNothing) {
  EXPECT_FALSE(BuildCommand(Parse("{length:u8}" + std::string(300, 'x')), {}));
}

TEST(CommandTemplate, AnswersWhosePartsCannotBeTold_HaveAProblem) {
  EXPECT_EQ(FindAnswerProblem(Parse("A={value},{skip}\\r")), "");
  EXPECT_EQ(FindAnswerProblem(Parse("{value:d}{check:hex2}\\r")), "");
  EXPECT_NE(FindAnswerProblem(Parse("{value}{skip}\\r")), "");
}

} // namespace
} // namespace krcamerabridge
