#include "krbase/krstring.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

using namespace std::string_literals;
using namespace std::string_view_literals;

namespace {

struct TextRow {
  std::string name;
  std::string utf8;
  std::u16string wide;
};

void PrintTo(const TextRow& aRow, std::ostream* aStream) {
  *aStream << aRow.name;
}

std::string GetName(const testing::TestParamInfo<TextRow>& aInfo) {
  return aInfo.param.name;
}

const std::vector<TextRow> kWellFormed = {
    {"Empty", "", u""},
    {"Ascii", "Gain", u"Gain"},
    {"EmbeddedZero", "a\0b"s, u"a\0b"s},
    {"LastOfOneByte", "\x7F", u"\u007F"},
    {"FirstOfTwoBytes", "\xC2\x80", u"\u0080"},
    {"LastOfTwoBytes", "\xDF\xBF", u"\u07FF"},
    {"FirstOfThreeBytes", "\xE0\xA0\x80", u"\u0800"},
    {"LastBeforeSurrogates", "\xED\x9F\xBF", u"\uD7FF"},
    {"FirstAfterSurrogates", "\xEE\x80\x80", u"\uE000"},
    {"LastOfThreeBytes", "\xEF\xBF\xBF", u"\uFFFF"},
    {"FirstOfFourBytes", "\xF0\x90\x80\x80", u"\xD800\xDC00"},
    {"LastCodePoint", "\xF4\x8F\xBF\xBF", u"\xDBFF\xDFFF"},
    {"Camera", "\xF0\x9F\x93\xB7", u"\xD83D\xDCF7"},
    {"Micrometre", "5 \xC2\xB5m", u"5 \u00B5m"},
};

const std::vector<TextRow> kMalformedUtf8 = {
    {"LoneContinuation", "a\x80z", u"a\uFFFDz"},
    {"TwoLoneContinuations", "\xBF\x80", u"\uFFFD\uFFFD"},
    {"OverlongSlashOfTwoBytes", "\xC0\xAF", u"\uFFFD\uFFFD"},
    {"OverlongOfThreeBytes", "\xE0\x9F\xBF", u"\uFFFD\uFFFD\uFFFD"},
    {"OverlongOfFourBytes", "\xF0\x8F\xBF\xBF", u"\uFFFD\uFFFD\uFFFD\uFFFD"},
    {"EncodedHighSurrogate", "\xED\xA0\x80", u"\uFFFD\uFFFD\uFFFD"},
    {"EncodedLowSurrogate", "\xED\xBF\xBF", u"\uFFFD\uFFFD\uFFFD"},
    {"BeyondTheLastCodePoint", "\xF4\x90\x80\x80", u"\uFFFD\uFFFD\uFFFD\uFFFD"},
    {"LeadThatNeverIs", "\xF5z\xFFz", u"\uFFFDz\uFFFDz"},
    {"TwoOfTwoBytesMissing", "\xC2", u"\uFFFD"},
    {"LastOfThreeBytesMissing", "\xE2\x82", u"\uFFFD"},
    {"LastOfFourBytesMissing", "\xF0\x9F\x93", u"\uFFFD"},
    {"CutOffBeforeAGoodCharacter", "\xE2\x82z", u"\uFFFDz"},
    {"CutOffBeforeAnotherLead", "\xF0\x9F\xC2\xB5", u"\uFFFD\u00B5"},
};

const std::vector<TextRow> kMalformedUtf16 = {
    {"LoneHighSurrogate", "a\xEF\xBF\xBDz", u"a\xD800z"},
    {"LoneLowSurrogate", "a\xEF\xBF\xBDz", u"a\xDC00z"},
    {"HighSurrogateAtTheEnd", "\xEF\xBF\xBD", u"\xDBFF"},
    {"SurrogatesInWrongOrder", "\xEF\xBF\xBD\xEF\xBF\xBD", u"\xDC00\xD800"},
    {"HighSurrogateBeforeAPair", "\xEF\xBF\xBD\xF0\x90\x80\x80", u"\xD800\xD800\xDC00"},
};

class WellFormedText : public testing::TestWithParam<TextRow> {};
class MalformedUtf8 : public testing::TestWithParam<TextRow> {};
class MalformedUtf16 : public testing::TestWithParam<TextRow> {};

} // namespace

TEST_P(WellFormedText, ReadsAsUtf16) {
  const KrString text(GetParam().utf8);

  EXPECT_EQ(text.ToWide(), GetParam().wide);
}

TEST_P(WellFormedText, IsTakenFromUtf16) {
  const KrString text(GetParam().wide);

  EXPECT_EQ(text.ToUtf8(), GetParam().utf8);
}

INSTANTIATE_TEST_SUITE_P(KrString, WellFormedText, testing::ValuesIn(kWellFormed), GetName);

TEST_P(MalformedUtf8, ReadsAsReplacementCharacters) {
  const KrString text(GetParam().utf8);

  EXPECT_EQ(text.ToWide(), GetParam().wide);
}

TEST_P(MalformedUtf8, IsKeptAsItIs) {
  const KrString text(GetParam().utf8);

  EXPECT_EQ(text.ToUtf8(), GetParam().utf8);
}

INSTANTIATE_TEST_SUITE_P(KrString, MalformedUtf8, testing::ValuesIn(kMalformedUtf8), GetName);

TEST_P(MalformedUtf16, BecomesReplacementCharacters) {
  const KrString text(GetParam().wide);

  EXPECT_EQ(text.ToUtf8(), GetParam().utf8);
}

INSTANTIATE_TEST_SUITE_P(KrString, MalformedUtf16, testing::ValuesIn(kMalformedUtf16), GetName);

TEST(KrString, EveryCodePoint_SurvivesTheWayThroughUtf16) {
  for (char32_t point = 1; point <= 0x10FFFF; ++point) {
    const bool isSurrogate = point >= 0xD800 && point <= 0xDFFF;
    if (isSurrogate)
      continue;
    std::u16string wide(1, static_cast<char16_t>(point));
    if (point >= 0x10000)
      wide = {static_cast<char16_t>(0xD800 + ((point - 0x10000) >> 10)),
              static_cast<char16_t>(0xDC00 + ((point - 0x10000) & 0x3FF))};

    ASSERT_EQ(KrString(wide).ToWide(), wide) << static_cast<std::uint32_t>(point);
  }
}

TEST(KrString, Null_IsTheEmptyText) {
  EXPECT_TRUE(KrString(static_cast<const char*>(nullptr)).IsEmpty());
  EXPECT_TRUE(KrString(static_cast<const char16_t*>(nullptr)).IsEmpty());
}

TEST(KrString, CStr_IsZeroTerminated) {
  const KrString text("Gain"sv.substr(0, 2));

  EXPECT_STREQ(text.CStr(), "Ga");
}

TEST(KrString, GetLength_CountsUtf8Bytes) {
  EXPECT_EQ(KrString().GetLength(), 0u);
  EXPECT_EQ(KrString(u"5 \u00B5m").GetLength(), 5u);
}

TEST(KrString, Clear_LeavesTheEmptyText) {
  KrString text("Gain");

  text.Clear();

  EXPECT_TRUE(text.IsEmpty());
  EXPECT_EQ(text, KrString());
}

TEST(KrString, Joining_AppendsTheOtherText) {
  KrString text("Exposure");

  text += "Time";

  EXPECT_EQ(text, "ExposureTime");
  EXPECT_EQ("[" + text + "]", "[ExposureTime]");
}

TEST(KrString, JoiningWithItself_DoublesTheText) {
  KrString text("ab");

  text += text;

  EXPECT_EQ(text, "abab");
}

TEST(KrString, Order_IsThatOfCodePointsAndNotOfUtf16) {
  const KrString lastBelowSupplementary(u"\uFFFF");
  const KrString firstSupplementary(u"\xD800\xDC00");

  EXPECT_LT(lastBelowSupplementary, firstSupplementary);
  EXPECT_LT(KrString("Z"), KrString("a"));
  EXPECT_LT(KrString("a"), KrString("ab"));
}
