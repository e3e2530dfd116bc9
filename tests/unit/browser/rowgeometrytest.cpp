#include "logic/browser/rowgeometry.h"

#include "gridrectprinting.h"

#include <gtest/gtest.h>

#include <limits>

namespace krgui {

namespace {

constexpr GridRect kRow = {0, 100, 500, 121};

constexpr RowGeometry RowAt(int aLevel, int aColumnWidth = kInitialNameColumnWidth) {
  return {kRow, aLevel, aColumnWidth};
}

struct RectangleRow {
  const char* name;
  RowGeometry row;
  GridRect (RowGeometry::*get)() const;
  GridRect expected;
};

constexpr RectangleRow kRectangleRows[] = {
    {"name of a row at the top level, indented as at level 1",
     RowAt(0),
     &RowGeometry::GetNameText,
     {23, 100, 217, 121}},
    {"name at level 1", RowAt(1), &RowGeometry::GetNameText, {23, 100, 217, 121}},
    {"name at level 3", RowAt(3), &RowGeometry::GetNameText, {63, 100, 217, 121}},
    {"name in a column that is too narrow for its level",
     RowAt(9, 100),
     &RowGeometry::GetNameText,
     {183, 100, 183, 121}},
    {"value", RowAt(1), &RowGeometry::GetValueText, {223, 100, 497, 121}},
    {"value in a window that is too narrow", RowAt(1, 499), &RowGeometry::GetValueText, {502, 100, 502, 121}},
    {"error icon", RowAt(1), &RowGeometry::GetErrorIcon, {202, 102, 218, 118}},
    {"editor, a pixel more on every side", RowAt(1), &RowGeometry::GetEditor, {220, 99, 500, 122}},
    {"glyph at the top level, without a least indentation", RowAt(0), &RowGeometry::GetGlyph, {3, 106, 12, 115}},
    {"glyph at level 2", RowAt(2), &RowGeometry::GetGlyph, {43, 106, 52, 115}},
    {"category's name at the top level", RowAt(0), &RowGeometry::GetCategoryName, {17, 100, 500, 121}},
    {"category's name at level 2", RowAt(2), &RowGeometry::GetCategoryName, {57, 100, 500, 121}},
};

struct PointRow {
  const char* name;
  int x;
  int y;
  bool isInside;
};

constexpr PointRow kGlyphPointRows[] = {
    {"left edge", 23, 110, true},    {"before the left edge", 22, 110, false},
    {"right edge", 32, 110, true},   {"behind the right edge", 33, 110, false},
    {"top edge", 27, 106, true},     {"above the top edge", 27, 105, false},
    {"bottom edge", 27, 114, true},  {"below the bottom edge", 27, 115, false},
    {"in the name", 40, 110, false},
};

struct ColumnRow {
  const char* name;
  int x;
  bool isInside;
};

constexpr ColumnRow kBandRows[] = {
    {"on the boundary", 220, true}, {"two before it", 218, true},    {"three before it", 217, false},
    {"two behind it", 222, true},   {"three behind it", 223, false},
};

constexpr ColumnRow kValueCellRows[] = {
    {"on the boundary", 220, false}, {"first pixel", 221, true},        {"last pixel", 499, true},
    {"behind the row", 500, false},  {"in the name column", 30, false},
};

struct DragRow {
  const char* name;
  int x;
  int windowWidth;
  int expected;
};

constexpr DragRow kDragRows[] = {
    {"far to the left", 20, 500, 100},
    {"left of the window", -300, 500, 100},
    {"at the least width", 100, 500, 100},
    {"between", 300, 500, 300},
    {"at the largest width", 450, 500, 450},
    {"beyond the largest width", 480, 500, 450},
    {"a window that has no room for both", 120, 149, 100},
    {"a window without width", 120, 0, 100},
};

struct ListRow {
  const char* name;
  int items;
  int itemHeight;
  int expected;
};

constexpr ListRow kListRows[] = {
    {"no item", 0, 16, 28},
    {"one item", 1, 16, 46},
    {"one fewer than fit", 23, 16, 442},
    {"as many as fit", 24, 16, 460},
    {"more than fit", 25, 16, 460},
    {"far more than fit", 1000, 20, 560},
    {"as many as can be counted", std::numeric_limits<int>::max(), 16, 460},
};

} // namespace

TEST(RowGeometry, RowsOfRectangles_LieWhereExpected) {
  for (const RectangleRow& row : kRectangleRows) {
    EXPECT_EQ((row.row.*row.get)(), row.expected) << row.name;
  }
}

TEST(RowGeometry, IsInGlyphBox_EdgesAndBeyond_TellsThemApart) {
  for (const PointRow& row : kGlyphPointRows) {
    EXPECT_EQ(RowAt(1).IsInGlyphBox(row.x, row.y), row.isInside) << row.name;
  }
}

TEST(RowGeometry, IsInValueCell_EdgesAndBeyond_TellsThemApart) {
  for (const ColumnRow& row : kValueCellRows) {
    EXPECT_EQ(RowAt(1).IsInValueCell(row.x), row.isInside) << row.name;
  }
}

TEST(IsInColumnBand, EdgesAndBeyond_TellsThemApart) {
  for (const ColumnRow& row : kBandRows) {
    EXPECT_EQ(IsInColumnBand(row.x, 220), row.isInside) << row.name;
  }
}

TEST(DragColumn, RowsOfPointers_AreLimited) {
  for (const DragRow& row : kDragRows) {
    EXPECT_EQ(DragColumn(row.x, row.windowWidth), row.expected) << row.name;
  }
}

TEST(GetChoiceListHeight, RowsOfItems_AreAsHighAsExpected) {
  for (const ListRow& row : kListRows) {
    EXPECT_EQ(GetChoiceListHeight(row.items, row.itemHeight), row.expected) << row.name;
  }
}

} // namespace krgui
