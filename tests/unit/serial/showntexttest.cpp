#include "logic/serial/showntext.h"

#include <gtest/gtest.h>

#include <string>

namespace krgui {

namespace {

using namespace std::string_literals;

struct ShownRow {
  const char* name;
  std::u16string text;
  std::u16string shown;
};

const ShownRow kRows[] = {
    {"letters", u"Az09~\u00E9", u"Az09~\u00E9"},
    {"line ends", u"A\r\nB\nC\r", u"A\nB\nC"},
    {"tabulator", u"A\tB", u"A\tB"},
    {"NUL", u"A\0B"s, u"A\u00B7B"},
    {"escape, delete, C1", u"\x1B\x7F\u0080\u009F", u"\u00B7\u00B7\u00B7\u00B7"},
    {"soft hyphen", u"A\u00ADB", u"A-B"},
    {"separators and directions", u"\u2028\u2029\u202E\u2066\u200B", u"\uFFFD\uFFFD\uFFFD\uFFFD\uFFFD"},
    {"no characters", std::u16string{0xFDD0, 0xFFFE, 0xFFFC}, u"\uFFFD\uFFFD\uFFFD"},
    {"pair of surrogates", u"\U0001F600", u"\U0001F600"},
    {"lone surrogates", std::u16string{0xDC00, 0xD800, u'A', 0xD800}, u"\uFFFD\uFFFDA\uFFFD"},
};

} // namespace

TEST(ShownText, EachText_IsShownUnitByUnitButForCarriageReturns) {
  for (const ShownRow& row : kRows) {
    EXPECT_EQ(MakeShownText(row.text), row.shown) << row.name;
    EXPECT_EQ(CountShownUnits(row.text), row.shown.size()) << row.name;
  }
}

TEST(ShownText, PlaceInIt_IsFoundInTheText) {
  const std::u16string text = u"A\r\nB";

  EXPECT_EQ(FindUnit(text, 0), 0U);
  EXPECT_EQ(FindUnit(text, 1), 2U);
  EXPECT_EQ(FindUnit(text, 2), 3U);
  EXPECT_EQ(FindUnit(text, 3), 4U);
  EXPECT_EQ(FindUnit(text, 99), 4U);
}

TEST(ShownText, TextForOtherPrograms_HasLineFeedsAloneAndNoNUL) {
  EXPECT_EQ(MakeForeignText(u"A\r\nB\0\x1B"s), u"A\nB\x1B");
}

} // namespace krgui
