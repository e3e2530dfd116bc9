#include "logic/finder/informationrow.h"

#include <gtest/gtest.h>

using krgui::IsWrittenInWhite;

TEST(InformationRow, OnlyRedAndGreen_AreWrittenOnInWhite) {
  struct {
    const char* name;
    krgui::RowColour colour;
    bool isWhite;
  } const kRows[] = {{"none", -1, false},         {"white", 0xFFFFFF, false}, {"yellow", 0x00FFFF, false},
                     {"red", 0x0000D0, true},     {"green", 0x008000, true},  {"black", 0, false},
                     {"another red", 0xFF, false}};

  for (const auto& row : kRows)
    EXPECT_EQ(IsWrittenInWhite(row.colour), row.isWhite) << row.name;
}
