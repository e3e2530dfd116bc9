#include "logic/display/displaytexts.h"

#include <gtest/gtest.h>

#include <limits>

using namespace krgui;

namespace {

struct PixelText {
  const char* name;
  KrPixelValue value;
  const char* text;
};

KrPixelValue MakeGrey(double aValue) {
  return {1, {aValue}, {'Y'}};
}

} // namespace

TEST(MakePixelText, Values_AreInOneLineWithoutALocale) {
  const PixelText rows[] = {
      {"grey", MakeGrey(789), "x 123  y 45  value 789"},
      {"below 0", MakeGrey(-32768), "x 123  y 45  value -32768"},
      {"a million", MakeGrey(1000000), "x 123  y 45  value 1000000"},
      {"53 bits", MakeGrey(9007199254740991.0), "x 123  y 45  value 9007199254740991"},
      {"64 bits", MakeGrey(18446744073709551616.0), "x 123  y 45  value 1.84467e+19"},
      {"a fraction", MakeGrey(1234.56789), "x 123  y 45  value 1234.57"},
      {"a small fraction", MakeGrey(0.000001234), "x 123  y 45  value 1.234e-06"},
      {"no number", MakeGrey(std::numeric_limits<double>::quiet_NaN()), "x 123  y 45  value nan"},
      {"infinity", MakeGrey(-std::numeric_limits<double>::infinity()), "x 123  y 45  value -inf"},
      {"a filter's colour", {1, {200}, {'G'}}, "x 123  y 45  G 200"},
      {"colours", {3, {12, 200, 7}, {'R', 'G', 'B'}}, "x 123  y 45  R 12 G 200 B 7"},
      {"luma and chroma", {3, {1, 2, 3}, {'Y', 'U', 'V'}}, "x 123  y 45  Y 1 U 2 V 3"},
      {"four", {4, {1, 2, 3, 4}, {'B', 'G', 'R', 'A'}}, "x 123  y 45  B 1 G 2 R 3 A 4"},
      {"a format that cannot tell", {}, "x 123  y 45"},
  };
  for (const PixelText& row : rows)
    EXPECT_EQ(MakePixelText(123, 45, row.value), KrString(row.text)) << row.name;
}

TEST(MakeFormatText, KnownFormat_IsNamed) {
  EXPECT_EQ(MakeFormatText(KrPixel::BiColorRGBG8), KrString("Cannot show pixel format BiColorRGBG8 (0x021000A5).\n"
                                                            "Set the camera to a mono, Bayer, RGB or YUV format."));
}

TEST(MakeFormatText, UnknownFormat_IsItsNumber) {
  EXPECT_EQ(MakeFormatText(0x81080123),
            KrString("Cannot show pixel format 0x81080123.\nSet the camera to a mono, Bayer, RGB or YUV format."));
}

TEST(CutText, LinesAndCharacters_AreKeptAsFarAsThereIsRoom) {
  struct CutRow {
    const char* name;
    std::string text;
    std::string cut;
  };
  const CutRow rows[] = {
      {"nothing", "", ""},
      {"as much as there is room for", "abcd\nefgh\nijkl", "abcd\nefgh\nijkl"},
      {"a line too many", "a\nb\nc\nd", "a\nb\nc"},
      {"long lines", "abcdefgh\nijklmnop", "abcd\nijkl"},
      {"every line end", "a\r\nb\rc", "a\nb\nc"},
      {"empty lines", "\n\n\n\n", "\n\n"},
      {"letters of several bytes", "äöüß!", "äöüß"},
      {"a cut between letters of several bytes", "€€€€€\n€", "€€€€\n€"},
  };
  for (const CutRow& row : rows)
    EXPECT_EQ(CutText(row.text, 3, 4), row.cut) << row.name;
}
