#include "krpersistence/krproperty.h"

#include <gmock/gmock.h>

#include <limits>

namespace {

using testing::HasSubstr;

TEST(KrProperty, New_IsEmpty) {
  const KrProperty property;

  EXPECT_EQ(property.GetName(), "");
  EXPECT_EQ(property.GetValue(), "");
}

TEST(KrProperty, Text_IsKept) {
  KrProperty property("View", "Tree");

  EXPECT_EQ(property.GetName(), "View");
  EXPECT_EQ(property.GetValue(), "Tree");

  property.SetName("Names");
  property.SetValue("DisplayNames");
  EXPECT_EQ(property, KrProperty("Names", "DisplayNames"));
}

TEST(KrProperty, IntegersOfEveryType_AreDecimalText) {
  KrProperty property("Number", 115200);
  EXPECT_EQ(property.GetValue(), "115200");

  property.SetValue(std::uint8_t{65});
  EXPECT_EQ(property.GetValue(), "65");
  property.SetValue(std::uint32_t{4294967295});
  EXPECT_EQ(property.GetValue(), "4294967295");
  property.SetValue(std::numeric_limits<std::uint64_t>::max());
  EXPECT_EQ(property.GetValue(), "18446744073709551615");
  property.SetValue(std::numeric_limits<std::int64_t>::min());
  EXPECT_EQ(property.GetValue(), "-9223372036854775808");
  property.SetValue(0);
  EXPECT_EQ(property.GetValue(), "0");
}

TEST(KrProperty, NameOrValueThatDiffers_MakesAnother) {
  EXPECT_NE(KrProperty("a", "b"), KrProperty("a", "c"));
  EXPECT_NE(KrProperty("a", "b"), KrProperty("c", "b"));
  EXPECT_EQ(KrProperty("a", 5), KrProperty("a", "5"));
}

TEST(KrProperty, DecimalTexts_AreIntegers) {
  struct Row {
    const char* text;
    std::int64_t value;
  };
  for (const Row& row : {Row{"0", 0}, Row{"-1", -1}, Row{"0009600", 9600},
                         Row{"9223372036854775807", std::numeric_limits<std::int64_t>::max()},
                         Row{"-9223372036854775808", std::numeric_limits<std::int64_t>::min()}}) {
    std::int64_t value = 77;

    EXPECT_TRUE(KrProperty("n", row.text).GetValue(value).IsOK()) << row.text;
    EXPECT_EQ(value, row.value) << row.text;
  }
}

struct MisfitRow {
  const char* name;
  const char* text;
  KrResult::Code code;
};

class TextThatIsNoInteger : public testing::TestWithParam<MisfitRow> {};

TEST_P(TextThatIsNoInteger, IsAnErrorThatNamesBothAndChangesNothing) {
  const KrProperty property("Serial0COMPortBaudRate", GetParam().text);
  std::int64_t value = 77;

  const KrResult result = property.GetValue(value);

  EXPECT_EQ(result.GetCode(), GetParam().code);
  EXPECT_THAT(result.GetDescription().ToUtf8(), testing::AllOf(HasSubstr("Serial0COMPortBaudRate"),
                                                               HasSubstr(std::string("\"") + GetParam().text + "\"")));
  EXPECT_EQ(value, 77);
}

INSTANTIATE_TEST_SUITE_P(
    Texts, TextThatIsNoInteger,
    testing::Values(MisfitRow{"Empty", "", KrResult::Code::BadData}, MisfitRow{"Word", "fast", KrResult::Code::BadData},
                    MisfitRow{"BlankBefore", " 9600", KrResult::Code::BadData},
                    MisfitRow{"BlankBehind", "9600 ", KrResult::Code::BadData},
                    MisfitRow{"LineEndBehind", "9600\n", KrResult::Code::BadData},
                    MisfitRow{"LettersBehind", "9600x", KrResult::Code::BadData},
                    MisfitRow{"Fraction", "9600.5", KrResult::Code::BadData},
                    MisfitRow{"Hexadecimal", "0x10", KrResult::Code::BadData},
                    MisfitRow{"PlusSign", "+5", KrResult::Code::BadData},
                    MisfitRow{"MinusAlone", "-", KrResult::Code::BadData},
                    MisfitRow{"OneTooLarge", "9223372036854775808", KrResult::Code::OutOfRange},
                    MisfitRow{"OneTooSmall", "-9223372036854775809", KrResult::Code::OutOfRange},
                    MisfitRow{"LargeWithLetters", "99999999999999999999x", KrResult::Code::BadData}),
    [](const auto& aInfo) { return std::string(aInfo.param.name); });

TEST(KrProperty, LongTextOfManyByteCharacters_IsShortenedBehindAWholeOne) {
  std::int64_t value = 0;
  std::string text = "x";
  std::string beginning = "x";
  for (int i = 0; i < 100; ++i) {
    text += "\xE2\x82\xAC";
    beginning += i < 33 ? "\xE2\x82\xAC" : "";
  }

  const KrResult shifted = KrProperty("n", text).GetValue(value);
  const KrResult whole = KrProperty("n", text.substr(1)).GetValue(value);

  EXPECT_THAT(shifted.GetDescription().ToUtf8(), HasSubstr("\"" + beginning + "…\""));
  EXPECT_THAT(whole.GetDescription().ToUtf8(), HasSubstr("\"" + beginning.substr(1) + "…\""));
}

TEST(KrProperty, LongText_IsShortenedInTheMessage) {
  std::int64_t value = 0;

  const KrResult result = KrProperty("n", std::string(100'000, 'x')).GetValue(value);

  EXPECT_LT(result.GetDescription().GetLength(), 300U);
}

} // namespace
