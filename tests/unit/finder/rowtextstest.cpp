#include "logic/finder/rowtexts.h"

#include <gtest/gtest.h>

using namespace krgui;

TEST(RowTexts, Hexadecimal_HasAtLeastItsDigitsInUpperCase) {
  struct {
    std::uint32_t number;
    int fewestDigits;
    const char* text;
  } const kRows[] = {
      {0, 2, "0x00"},
      {0xAB, 2, "0xAB"},
      {0xABC, 2, "0xABC"},
      {0x1A, 4, "0x001A"},
      {0, 8, "0x00000000"},
      {0xFFFFFFFF, 8, "0xFFFFFFFF"},
      {0x80000000, 2, "0x80000000"},
  };
  for (const auto& row : kRows)
    EXPECT_EQ(WriteHex(row.number, row.fewestDigits), KrString(row.text));
}

TEST(RowTexts, Version_IsMajorAndMinorWithoutLeadingZeros) {
  EXPECT_EQ(WriteVersion(0), KrString("0.0"));
  EXPECT_EQ(WriteVersion(0x0001000A), KrString("1.10"));
  EXPECT_EQ(WriteVersion(0xFFFFFFFF), KrString("65535.65535"));
}

TEST(RowTexts, Decimal_HasASignOnlyWhenNegative) {
  EXPECT_EQ(WriteDecimal(0), KrString("0"));
  EXPECT_EQ(WriteDecimal(-7), KrString("-7"));
  EXPECT_EQ(WriteDecimal(4294967295), KrString("4294967295"));
}

TEST(RowTexts, Truth_IsWrittenAsAWord) {
  EXPECT_EQ(WriteBool(true), KrString("True"));
  EXPECT_EQ(WriteBool(false), KrString("False"));
}
