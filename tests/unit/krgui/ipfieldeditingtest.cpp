#include "logic/frame/ipfieldediting.h"

#include <gtest/gtest.h>

#include <string>

namespace krgui {

namespace {

/// Types a text into empty fields; '<' is Backspace, 'x' Delete, '{' and '}' are Left and Right, '[' and ']' Home and
/// End, 'P' and 'N' the previous and the next field.
IPFields Type(std::string_view aKeys, IPFields aFields = {}) {
  constexpr struct {
    char name;
    IPKey key;
  } kNames[] = {{'<', IPKey::Backspace}, {'x', IPKey::Delete}, {'{', IPKey::Left},          {'}', IPKey::Right},
                {'[', IPKey::Home},      {']', IPKey::End},    {'P', IPKey::PreviousField}, {'N', IPKey::NextField}};
  for (const char character : aKeys) {
    bool isKey = false;
    for (const auto& row : kNames) {
      if (row.name == character) {
        aFields = PressKey(aFields, row.key);
        isKey = true;
      }
    }
    if (!isKey) {
      aFields = TypeCharacter(aFields, static_cast<char16_t>(character));
    }
  }
  return aFields;
}

/// The fields with '|' for the caret and "(…)" around what is selected.
std::string Show(const IPFields& aFields) {
  IPFields shown = aFields;
  std::string& text = shown.texts[shown.field];
  if (shown.HasSelection()) {
    text.insert(std::max(shown.caret, shown.anchor), ")");
    text.insert(std::min(shown.caret, shown.anchor), "(");
  } else {
    text.insert(shown.caret, "|");
  }
  return GetDottedText(shown);
}

struct TypingCase {
  const char* name;
  const char* keys;
  const char* expected;
};

class IPFieldTyping : public testing::TestWithParam<TypingCase> {};

TEST_P(IPFieldTyping, Keys_GiveTheirFieldsAndCaret) {
  EXPECT_EQ(Show(Type(GetParam().keys)), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(
    Rows, IPFieldTyping,
    testing::Values(
        TypingCase{"Nothing", "", "|..."}, TypingCase{"Digits", "12", "12|..."},
        TypingCase{"ThreeDigitsMoveOn", "192", "192.|.."},
        TypingCase{"WholeAddressWithDots", "192.168.1.20", "192.168.1.20|"},
        TypingCase{"WholeAddressWithBlanks", "10 0 0 5", "10.0.0.5|"},
        TypingCase{"WholeAddressWithCommas", "10,0,0,5", "10.0.0.5|"},
        TypingCase{"DigitsAlone", "192168100200", "192.168.100.200|"},
        TypingCase{"DotAfterAFieldThatMovedOnByItself", "192.", "192.|.."},
        TypingCase{"DotInAnEmptyField", ".", "|..."}, TypingCase{"DotInTheLastField", "1.2.3.4.", "1.2.3.4|"},
        TypingCase{"DotInsideAField", "12{.", "12.|.."}, TypingCase{"DotBeforeAFilledField", "1.2P{.", "1.(2).."},
        TypingCase{"DotWhereAllIsSelected", "1.2P.", "(1).2.."}, TypingCase{"Above255IsCut", "300", "255.|.."},
        TypingCase{"Just255Stays", "255", "255.|.."}, TypingCase{"Above255InTheLastField", "1.2.3.999", "1.2.3.255|"},
        TypingCase{"InsertedAbove255IsCut", "99{{9", "2|55..."},
        TypingCase{"FourthDigitInTheMiddleIsRefused", "192[}4", "1|92..."},
        TypingCase{"FourthDigitAtTheEndOpensTheNextField", "192[}}}4", "192.4|.."},
        TypingCase{"FourthDigitReplacesTheNextField", "192.77[}}}4", "192.4|.."},
        TypingCase{"FourthDigitInTheLastFieldIsRefused", "1.2.3.1234", "1.2.3.123|"},
        TypingCase{"LettersAndSigns", "a-1+e2", "12|..."}, TypingCase{"LeadingZeros", "010", "010.|.."},
        TypingCase{"BackspaceInAField", "12<", "1|..."},
        TypingCase{"BackspaceAtTheBeginningGoesBack", "192<", "192|..."},
        TypingCase{"BackspaceAtTheBeginningTwiceDeletes", "192<<", "19|..."},
        TypingCase{"BackspaceAtTheVeryBeginning", "1[<", "|1..."},
        TypingCase{"BackspaceOnASelection", "1.2P<", "|.2.."}, TypingCase{"DeleteInAField", "12[x", "|2..."},
        TypingCase{"DeleteAtTheEndStays", "12x", "12|..."}, TypingCase{"DeleteOnASelection", "1.2Px", "|.2.."},
        TypingCase{"LeftCrossesFields", "1.2{{", "1|.2.."}, TypingCase{"LeftAtTheVeryBeginning", "{", "|..."},
        TypingCase{"RightCrossesFields", "1.2[}}", "1.|2.."}, TypingCase{"RightAtTheVeryEnd", "1.2.3.4}}", "1.2.3.4|"},
        TypingCase{"LeftOnASelection", "1.23[N{", "1.|23.."}, TypingCase{"RightOnASelection", "1.23[N}", "1.23|.."},
        TypingCase{"HomeGoesToTheFirstField", "1.2.3[", "|1.2.3."},
        TypingCase{"EndGoesToTheLastField", "1.2.3.45[]", "1.2.3.45|"},
        TypingCase{"EndOfAnEmptyLastField", "1]", "1...|"}, TypingCase{"PreviousFieldInTheFirst", "12P", "|12..."},
        TypingCase{"NextFieldInTheLast", "1.2.3.4{N", "1.2.3.4|"},
        TypingCase{"TypingOnASelection", "1.23[N9", "1.9|.."}),
    [](const auto& aInfo) { return aInfo.param.name; });

struct PasteCase {
  const char* name;
  const char16_t* text;
  const char* expected;
};

class IPFieldPaste : public testing::TestWithParam<PasteCase> {};

TEST_P(IPFieldPaste, Text_FillsTheFieldsOrChangesNothing) {
  EXPECT_EQ(Show(Paste(Type("7.8"), GetParam().text)), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(
    Rows, IPFieldPaste,
    testing::Values(PasteCase{"Address", u"192.168.1.20", "192.168.1.20|"},
                    PasteCase{"AddressInALine", u"  10.0.0.5\r\n", "10.0.0.5|"},
                    PasteCase{"FieldsAbove255AreCut", u"300.1.1.999", "255.1.1.255|"},
                    PasteCase{"DigitsAlone", u"12", "7.255.|."}, PasteCase{"OneDigit", u"1", "7.81|.."},
                    PasteCase{"ManyDigits", u"1134567", "7.255.255.67|"}, PasteCase{"Empty", u"", "7.8|.."},
                    PasteCase{"ThreeFields", u"10.0.0", "7.8|.."}, PasteCase{"FiveFields", u"10.0.0.1.2", "7.8|.."},
                    PasteCase{"EmptyField", u"10..0.1", "7.8|.."}, PasteCase{"LongField", u"10.0.0.1234", "7.8|.."},
                    PasteCase{"Prefix", u"10.0.0.1/24", "7.8|.."}, PasteCase{"Words", u"camera", "7.8|.."},
                    PasteCase{"DigitsOfOtherScripts", u"\u0661\u0662", "7.8|.."}),
    [](const auto& aInfo) { return aInfo.param.name; });

TEST(IPFields, EmptyFields_CountAsZero) {
  EXPECT_EQ(GetAddress(Type("")), 0U);
  EXPECT_EQ(GetAddress(Type("192.168.1")), 0xC0A80100U);
  EXPECT_EQ(GetAddress(Type("255255255255")), 0xFFFFFFFFU);
}

TEST(IPFields, AddressThatIsSet_FillsAllAndKeepsTheCaretInside) {
  IPFields fields = Type("123P");
  fields.caret = fields.anchor = 3;

  SetAddress(fields, 0x0A000005);

  EXPECT_EQ(Show(fields), "10|.0.0.5");
}

TEST(IPFields, CleanField_KeepsThreeDigitsUpTo255) {
  EXPECT_EQ(CleanField(u""), "");
  EXPECT_EQ(CleanField(u"1a2"), "12");
  EXPECT_EQ(CleanField(u"1234"), "123");
  EXPECT_EQ(CleanField(u"999"), "255");
}

} // namespace

} // namespace krgui
