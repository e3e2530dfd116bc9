// Where the serial bridge manager's controls lie: nothing overlaps or leaves its group at any size that the window has.

#include "logic/serial/bridgelayout.h"

#include <gmock/gmock.h>

#include <cstddef>
#include <utility>
#include <vector>

namespace krgui {

namespace {

/// Of a font of 9 points, and one of 12.
constexpr BridgeMetrics kFonts[] = {
    {.titleHeight = 18,
     .lineHeight = 14,
     .radioHeight = 16,
     .fieldHeight = 25,
     .indent = 20,
     .radioWidth = 145,
     .portListWidth = 110,
     .labelWidth = 24,
     .listWidth = 90,
     .configureWidth = 92,
     .resetWidth = 58,
     .rateWidth = 89},
    {.titleHeight = 23,
     .lineHeight = 19,
     .radioHeight = 21,
     .fieldHeight = 27,
     .indent = 22,
     .radioWidth = 187,
     .portListWidth = 138,
     .labelWidth = 32,
     .listWidth = 116,
     .configureWidth = 118,
     .resetWidth = 70,
     .rateWidth = 117},
};

constexpr std::pair<int, int> kSizes[] = {{500, 300}, {500, 600}, {800, 300}, {576, 445}, {768, 594}, {800, 600}};

BridgeLayout LayOut(BridgeMetrics aMetrics, const std::pair<int, int>& aSize) {
  aMetrics.width = aSize.first;
  aMetrics.height = aSize.second;
  return LayOutBridge(aMetrics);
}

struct Group {
  PixelRect box;
  std::vector<PixelRect> controls;
};

std::vector<Group> GetGroups(const BridgeLayout& a) {
  return {{a.portBox, {a.portList}},
          {a.setupBox,
           {a.none, a.comPortLink, a.comPortLabel, a.comPortList, a.configure, a.description, a.cameraLink,
            a.cameraLinkName, a.state}},
          {a.ratesBox, {a.rates.begin(), a.rates.end()}},
          {a.statisticsBox, {a.sent, a.received, a.reset}}};
}

bool IsInside(const PixelRect& aInner, const PixelRect& aOuter) {
  return aInner.left >= aOuter.left && aInner.top >= aOuter.top && aInner.right <= aOuter.right &&
         aInner.bottom <= aOuter.bottom;
}

bool Overlap(const PixelRect& aOne, const PixelRect& aOther) {
  return aOne.left < aOther.right && aOther.left < aOne.right && aOne.top < aOther.bottom && aOther.top < aOne.bottom;
}

int GetMiddle(const PixelRect& aRect) {
  return (aRect.top + aRect.bottom) / 2;
}

class BridgeLayouts : public testing::Test {
protected:
  template <typename Check>
  static void ForAll(Check aCheck) {
    for (const BridgeMetrics& font : kFonts) {
      for (const auto& size : kSizes) {
        SCOPED_TRACE(testing::Message() << size.first << " x " << size.second << ", lines of " << font.lineHeight);
        aCheck(LayOut(font, size), font, size);
      }
    }
  }
};

} // namespace

TEST_F(BridgeLayouts, Groups_LieInTheWindowAndBesideEachOther) {
  ForAll([](const BridgeLayout& aLayout, const BridgeMetrics&, const std::pair<int, int>& aSize) {
    const std::vector<Group> groups = GetGroups(aLayout);
    for (std::size_t one = 0; one < groups.size(); ++one) {
      EXPECT_TRUE(IsInside(groups[one].box, {0, 0, aSize.first, aSize.second})) << one;
      for (std::size_t other = 0; other < one; ++other)
        EXPECT_FALSE(Overlap(groups[one].box, groups[other].box)) << one << " " << other;
    }
  });
}

TEST_F(BridgeLayouts, Controls_LieInTheirGroupsBelowItsTitleAndBesideEachOther) {
  ForAll([](const BridgeLayout& aLayout, const BridgeMetrics& aFont, const std::pair<int, int>&) {
    for (const Group& group : GetGroups(aLayout)) {
      const PixelRect inside = {group.box.left, group.box.top + aFont.titleHeight, group.box.right, group.box.bottom};
      for (std::size_t one = 0; one < group.controls.size(); ++one) {
        EXPECT_TRUE(IsInside(group.controls[one], inside)) << one;
        EXPECT_FALSE(group.controls[one].IsEmpty()) << one;
        for (std::size_t other = 0; other < one; ++other)
          EXPECT_FALSE(Overlap(group.controls[one], group.controls[other])) << one << " " << other;
      }
    }
  });
}

TEST_F(BridgeLayouts, Controls_HaveTheRoomThatTheyNeed) {
  ForAll([](const BridgeLayout& aLayout, const BridgeMetrics& aFont, const std::pair<int, int>&) {
    for (const PixelRect& rate : aLayout.rates) {
      EXPECT_GE(rate.GetWidth(), aFont.rateWidth);
      EXPECT_GE(rate.GetHeight(), aFont.lineHeight);
    }
    EXPECT_GE(aLayout.configure.GetWidth(), aFont.configureWidth);
    EXPECT_GE(aLayout.reset.GetWidth(), aFont.resetWidth);
    EXPECT_GE(aLayout.comPortList.GetWidth(), aFont.listWidth);
    EXPECT_GE(aLayout.comPortLink.GetWidth(), aFont.radioWidth);
    for (const PixelRect& field : {aLayout.portList, aLayout.comPortList, aLayout.configure, aLayout.reset})
      EXPECT_EQ(field.GetHeight(), aFont.fieldHeight);
    for (const PixelRect& line : {aLayout.description, aLayout.cameraLinkName, aLayout.state, aLayout.sent,
                                  aLayout.received, aLayout.comPortLabel})
      EXPECT_GE(line.GetHeight(), aFont.lineHeight);
  });
}

TEST_F(BridgeLayouts, Rows_HaveTheirControlsInLineAndColumnsOneEdge) {
  ForAll([](const BridgeLayout& aLayout, const BridgeMetrics&, const std::pair<int, int>&) {
    for (const PixelRect& rect : {aLayout.comPortLabel, aLayout.comPortList, aLayout.configure})
      EXPECT_NEAR(GetMiddle(rect), GetMiddle(aLayout.comPortLink), 1);
    EXPECT_NEAR(GetMiddle(aLayout.cameraLinkName), GetMiddle(aLayout.cameraLink), 1);
    EXPECT_EQ(aLayout.comPortLabel.left, aLayout.cameraLinkName.left);
    for (const PixelRect& rect :
         {aLayout.comPortLink, aLayout.cameraLink, aLayout.state, aLayout.portList, aLayout.rates.front()})
      EXPECT_EQ(rect.left, aLayout.none.left);
    EXPECT_EQ(aLayout.setupBox.left, aLayout.ratesBox.left);
    EXPECT_EQ(aLayout.setupBox.right, aLayout.ratesBox.right);
    EXPECT_EQ(aLayout.setupBox.right, aLayout.statisticsBox.right);
  });
}

TEST_F(BridgeLayouts, LowWindow_HasTheCountersBesideThePort) {
  const BridgeLayout low = LayOut(kFonts[0], {500, 300});
  const BridgeLayout high = LayOut(kFonts[0], {576, 445});

  EXPECT_EQ(low.statisticsBox.top, low.portBox.top);
  EXPECT_EQ(low.statisticsBox.bottom, low.portBox.bottom);
  EXPECT_LT(low.sent.top, low.received.top);
  EXPECT_GT(high.statisticsBox.top, high.ratesBox.bottom);
  EXPECT_EQ(high.sent.top, high.received.top);
}

TEST_F(BridgeLayouts, Rates_AreReadRowByRowInAsManyColumnsAsThereIsRoomFor) {
  const BridgeLayout wide = LayOut(kFonts[0], {576, 445});
  const BridgeLayout narrow = LayOut(kFonts[1], {500, 300});

  EXPECT_EQ(wide.rates[4].top, wide.rates[0].top);
  EXPECT_GT(wide.rates[5].top, wide.rates[4].top);
  EXPECT_EQ(wide.rates[5].left, wide.rates[0].left);
  EXPECT_EQ(narrow.rates[3].top, narrow.rates[0].top);
  EXPECT_GT(narrow.rates[4].top, narrow.rates[3].top);
}

} // namespace krgui
