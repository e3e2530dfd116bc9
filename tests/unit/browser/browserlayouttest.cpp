#include "logic/browser/browserlayout.h"

#include "gridrectprinting.h"

#include <gtest/gtest.h>

namespace krgui {

namespace {

constexpr BrowserMetrics Metrics(int aWidth, int aHeight, bool aHasSearchRow, int aDescriptionHeight) {
  return {.width = aWidth,
          .height = aHeight,
          .margin = 4,
          .rowHeight = 26,
          .hasSearchRow = aHasSearchRow,
          .descriptionHeight = aDescriptionHeight};
}

constexpr int kLeastWidth = 390;
constexpr int kLeastHeight = 550;

struct LayoutRow {
  const char* name;
  BrowserMetrics metrics;
  BrowserRows expected;
};

constexpr LayoutRow kLayoutRows[] = {
    {"least size without search",
     Metrics(kLeastWidth, kLeastHeight, false, 150),
     {{4, 4, 386, 30}, {}, {4, 34, 386, 392}, {4, 396, 386, 546}}},
    {"least size with search",
     Metrics(kLeastWidth, kLeastHeight, true, 150),
     {{4, 4, 386, 30}, {4, 34, 386, 60}, {4, 64, 386, 392}, {4, 396, 386, 546}}},
    {"a description that is wanted higher than there is room",
     Metrics(kLeastWidth, kLeastHeight, false, 10000),
     {{4, 4, 386, 30}, {}, {4, 34, 386, 94}, {4, 98, 386, 546}}},
    {"a description that is wanted lower than its least height",
     Metrics(kLeastWidth, kLeastHeight, false, -20),
     {{4, 4, 386, 30}, {}, {4, 34, 386, 502}, {4, 506, 386, 546}}},
    {"too low for both, the description gives way",
     Metrics(kLeastWidth, 120, false, 150),
     {{4, 4, 386, 30}, {}, {4, 34, 386, 94}, {4, 98, 386, 116}}},
    {"too low for the grid, no description",
     Metrics(kLeastWidth, 80, false, 150),
     {{4, 4, 386, 30}, {}, {4, 34, 386, 72}, {4, 76, 386, 76}}},
};

bool IsInside(const GridRect& aRect, const BrowserMetrics& aMetrics) {
  return aRect.left >= 0 && aRect.top >= 0 && aRect.left <= aRect.right && aRect.top <= aRect.bottom &&
         aRect.right <= aMetrics.width && aRect.bottom <= aMetrics.height;
}

struct SplitterRow {
  const char* name;
  int y;
  bool isInside;
};

// The grid of the least size ends at 392.
constexpr SplitterRow kSplitterRows[] = {
    {"on the edge", 392, true}, {"three above", 389, true}, {"four above", 388, false},
    {"three below", 395, true}, {"four below", 396, false},
};

struct DragRow {
  const char* name;
  int y;
  int expected;
};

constexpr DragRow kDragRows[] = {
    {"where it is", 392, 150},
    {"up by ten", 382, 160},
    {"down by ten", 402, 140},
    {"above the window", -500, 448},
    {"so high that the grid has its least height", 94, 448},
    {"below the window", 5000, 40},
    {"so low that the description has its least height", 502, 40},
};

} // namespace

TEST(LayOutBrowser, RowsOfSizes_GiveTheBandsExpected) {
  for (const LayoutRow& row : kLayoutRows) {
    const BrowserRows rows = LayOutBrowser(row.metrics);

    EXPECT_EQ(rows.tools, row.expected.tools) << row.name;
    EXPECT_EQ(rows.search, row.expected.search) << row.name;
    EXPECT_EQ(rows.grid, row.expected.grid) << row.name;
    EXPECT_EQ(rows.description, row.expected.description) << row.name;
  }
}

TEST(LayOutBrowser, EverySmallSize_GivesBandsInsideTheWindowOneBelowTheOther) {
  for (const bool hasSearchRow : {false, true}) {
    for (int size = 0; size < 260; ++size) {
      const BrowserMetrics metrics = Metrics(size, size, hasSearchRow, 150);

      const BrowserRows rows = LayOutBrowser(metrics);

      for (const GridRect& band : {rows.tools, rows.search, rows.grid, rows.description}) {
        ASSERT_TRUE(IsInside(band, metrics)) << size << " " << testing::PrintToString(band);
      }
      ASSERT_LE(rows.tools.bottom, rows.grid.top) << size;
      ASSERT_LE(rows.search.bottom, rows.grid.top) << size;
      ASSERT_LE(rows.grid.bottom, rows.description.top) << size;
    }
  }
}

TEST(LayOutBrowser, NegativeSize_GivesEmptyBandsAtTheOrigin) {
  const BrowserRows rows = LayOutBrowser(Metrics(-50, -50, true, 150));

  for (const GridRect& band : {rows.tools, rows.search, rows.grid, rows.description}) {
    EXPECT_EQ(band, GridRect());
  }
}

TEST(IsInSplitterBand, EdgesAndBeyond_TellsThemApart) {
  const BrowserRows rows = LayOutBrowser(Metrics(kLeastWidth, kLeastHeight, false, 150));

  for (const SplitterRow& row : kSplitterRows) {
    EXPECT_EQ(IsInSplitterBand(row.y, rows), row.isInside) << row.name;
  }
}

TEST(DragSplitter, RowsOfPointers_GiveTheHeightExpected) {
  for (const DragRow& row : kDragRows) {
    EXPECT_EQ(DragSplitter(row.y, Metrics(kLeastWidth, kLeastHeight, false, 150)), row.expected) << row.name;
  }
}

TEST(DragSplitter, AnyPointer_PutsTheGridsEdgeThereWithinItsLimits) {
  for (int y = 94; y <= 502; ++y) {
    BrowserMetrics metrics = Metrics(kLeastWidth, kLeastHeight, false, 150);

    metrics.descriptionHeight = DragSplitter(y, metrics);

    ASSERT_EQ(LayOutBrowser(metrics).grid.bottom, y);
  }
}

} // namespace krgui
