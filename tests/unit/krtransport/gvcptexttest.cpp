#include "gigevision/gvcptext.h"

#include <gtest/gtest.h>

#include <vector>

namespace {

using namespace krtransport;

struct TextRow {
  const char* name;
  std::string field;
  std::string text;
};

// A macro, so that the table can join literals.
#define KR_REPLACEMENT "\xEF\xBF\xBD"

const TextRow kTexts[] = {
    {"Empty", "", ""},
    {"ZeroFirst", std::string("\0abc", 4), ""},
    {"Terminated", std::string("abc\0def", 7), "abc"},
    {"Unterminated", "abcdef", "abcdef"},
    {"ControlCharacters",
     "a\x01\n\x7F"
     "b",
     "a" KR_REPLACEMENT KR_REPLACEMENT KR_REPLACEMENT "b"},
    {"Latin1Umlaut", "K\xF6ln", "K" KR_REPLACEMENT "ln"},
    {"Utf8Umlaut", "K\xC3\xB6ln", "K\xC3\xB6ln"},
    {"Utf8ThreeBytes", "\xE2\x82\xAC", "\xE2\x82\xAC"},
    {"Utf8FourBytes", "\xF0\x9F\x93\xB7", "\xF0\x9F\x93\xB7"},
    {"SequenceCutByTheFieldsEnd", "a\xE2\x82", "a" KR_REPLACEMENT KR_REPLACEMENT},
    {"LoneContinuation", "\x80", KR_REPLACEMENT},
    {"OverlongSlash", "\xC0\xAF", KR_REPLACEMENT KR_REPLACEMENT},
    {"Surrogate", "\xED\xA0\x80", KR_REPLACEMENT KR_REPLACEMENT KR_REPLACEMENT},
    {"BeyondUnicode", "\xF4\x90\x80\x80", KR_REPLACEMENT KR_REPLACEMENT KR_REPLACEMENT KR_REPLACEMENT},
    {"ControlInTwoBytes", "\xC2\x85", KR_REPLACEMENT KR_REPLACEMENT},
    {"ZeroWidth", "a\u200Bb\u200Dc\u200F", "a" KR_REPLACEMENT "b" KR_REPLACEMENT "c" KR_REPLACEMENT},
    {"LineAndParagraph", "\u2028\u2029", KR_REPLACEMENT KR_REPLACEMENT},
    {"DirectionsEmbedded", "\u202Aa\u202Cb\u202E", KR_REPLACEMENT "a" KR_REPLACEMENT "b" KR_REPLACEMENT},
    {"DirectionsIsolated", "\u2066a\u2069", KR_REPLACEMENT "a" KR_REPLACEMENT},
    {"ArabicLetterMark", "a\u061C", "a" KR_REPLACEMENT},
    {"ByteOrderMark", "\uFEFFa", KR_REPLACEMENT "a"},
    {"BesideTheMarks", "\u200A\u2010\u2027\u202F\u2065\u206A\uFEFC\uFF01",
     "\u200A\u2010\u2027\u202F\u2065\u206A\uFEFC\uFF01"},
};

class GvcpText : public testing::TestWithParam<TextRow> {};

TEST_P(GvcpText, ReadText_Field_GivesPrintableUtf8) {
  const std::vector<std::uint8_t> field(GetParam().field.begin(), GetParam().field.end());

  EXPECT_EQ(ReadText(field), GetParam().text);
}

INSTANTIATE_TEST_SUITE_P(Fields, GvcpText, testing::ValuesIn(kTexts),
                         [](const auto& aInfo) { return aInfo.param.name; });

} // namespace
