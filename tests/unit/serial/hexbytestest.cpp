#include "logic/serial/hexbytes.h"

#include <gtest/gtest.h>

namespace krgui {

namespace {

using Bytes = std::vector<std::uint8_t>;

struct HexRow {
  const char* name;
  const char16_t* text;
  bool isGood;
  Bytes bytes;
};

const HexRow kHexRows[] = {
    {"nothing", u"", true, {}},
    {"a blank", u" ", true, {}},
    {"many blanks", u"     ", true, {}},
    {"one digit", u"7", true, {0x07}},
    {"a pair", u"7F", true, {0x7F}},
    {"pairs parted by blanks", u"03 64 70 6D AB 43 72 01 02", true, {0x03, 0x64, 0x70, 0x6D, 0xAB, 0x43, 0x72, 1, 2}},
    {"pairs without blanks", u"0364", true, {0x03, 0x64}},
    {"a lone digit before a blank", u"3 64", true, {0x03, 0x64}},
    {"a lone digit at the end", u"123", true, {0x12, 0x03}},
    {"lone digits", u"1 2", true, {0x01, 0x02}},
    {"blanks around and between", u"  A  BC   D ", true, {0x0A, 0xBC, 0x0D}},
    {"a zero alone", u"0 00 0", true, {0x00, 0x00, 0x00}},
    {"every digit", u"0123456789ABCDEF", true, {0x01, 0x23, 0x45, 0x67, 0x89, 0xAB, 0xCD, 0xEF}},
    {"a letter beyond F", u"12G4", false, {}},
    {"a prefix", u"0X12", false, {}},
    {"digits in lower case", u"ab", false, {}},
    {"the character before 0", u"12/", false, {}},
    {"the character after 9", u"12:", false, {}},
    {"the character before A", u"12@", false, {}},
    {"a tabulator", u"12\t34", false, {}},
    {"a line end", u"12\r\n", false, {}},
    {"a no-break blank", u"12\u00A034", false, {}},
    {"an ideographic blank", u"12\u300034", false, {}},
    {"fullwidth digits", u"\uFF11\uFF12", false, {}},
    {"a character whose low byte is a digit", u"\u0141", false, {}},
    {"a bad character at the end of many good ones", u"03 64 70 6D AB ,", false, {}},
};

} // namespace

TEST(ParseHexString, EveryText_GivesItsBytesOrIsNoGood) {
  for (const HexRow& row : kHexRows) {
    SCOPED_TRACE(row.name);

    const ParsedBytes parsed = ParseHexString(row.text);

    EXPECT_EQ(parsed.ok, row.isGood);
    EXPECT_EQ(parsed.bytes, row.bytes);
  }
}

TEST(ParseHexString, ANullCharacterInTheText_IsNoGood) {
  const ParsedBytes parsed = ParseHexString(std::u16string_view(u"12\0", 3));

  EXPECT_FALSE(parsed.ok);
  EXPECT_TRUE(parsed.bytes.empty());
}

} // namespace krgui
