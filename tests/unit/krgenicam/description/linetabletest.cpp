#include "description/linetable.h"

#include <gtest/gtest.h>

namespace krgenicam {
namespace {

TEST(LineTable_, Offsets_HaveLinesAndColumnsFromOneOn) {
  const LineTable lines("ab\r\n\nc");
  const struct {
    std::size_t offset;
    const char* expected;
  } rows[] = {
      {0, "line 1, column 1"}, {3, "line 1, column 4"}, {4, "line 2, column 1"},
      {5, "line 3, column 1"}, {6, "line 3, column 2"}, {100, "line 3, column 96"},
  };

  for (const auto& row : rows)
    EXPECT_EQ(lines.Describe(row.offset), row.expected);
  EXPECT_EQ(LineTable("").GetLine(0), 1U);
}

} // namespace
} // namespace krgenicam
