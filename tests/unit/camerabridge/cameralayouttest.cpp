// Where the camera bridge manager's controls lie.

#include "logic/camerabridge/cameralayout.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace krgui {

namespace {

/// As fonts of 9 and 12 points have it.
constexpr CameraMetrics kSmallFont = {.width = 775,
                                      .height = 582,
                                      .titleHeight = 19,
                                      .lineHeight = 15,
                                      .radioHeight = 19,
                                      .fieldHeight = 23,
                                      .indent = 20,
                                      .labelWidth = 52,
                                      .buttonWidth = 74,
                                      .browseWidth = 24,
                                      .switchWidth = 290,
                                      .statusWidth = 320,
                                      .browserWidth = 290};
constexpr CameraMetrics kLargeFont = {.width = 775,
                                      .height = 582,
                                      .titleHeight = 24,
                                      .lineHeight = 20,
                                      .radioHeight = 22,
                                      .fieldHeight = 27,
                                      .indent = 20,
                                      .labelWidth = 70,
                                      .buttonWidth = 92,
                                      .browseWidth = 27,
                                      .switchWidth = 385,
                                      .statusWidth = 440,
                                      .browserWidth = 330};

struct Named {
  const char* name;
  PixelRect place;
};

std::vector<Named> GetSetup(const CameraLayout& aLayout) {
  return {{"ports", aLayout.ports},
          {"none", aLayout.none},
          {"clProtocol", aLayout.clProtocol},
          {"templateLabel", aLayout.templateLabel},
          {"templates", aLayout.templates},
          {"probe", aLayout.probe},
          {"probeStatus", aLayout.probeStatus},
          {"clXMLLabel", aLayout.clXMLLabel},
          {"clXMLs", aLayout.clXMLs},
          {"clConnect", aLayout.clConnect},
          {"clStatus", aLayout.clStatus},
          {"genCP", aLayout.genCP},
          {"genCPXMLLabel", aLayout.genCPXMLLabel},
          {"genCPXMLs", aLayout.genCPXMLs},
          {"genCPConnect", aLayout.genCPConnect},
          {"genCPStatus", aLayout.genCPStatus},
          {"sourceLabel", aLayout.sourceLabel},
          {"sources", aLayout.sources},
          {"synchronization", aLayout.synchronization},
          {"state", aLayout.state}};
}

std::vector<Named> GetCameraFile(const CameraLayout& aLayout) {
  return {{"cameraFile", aLayout.cameraFile}, {"pathLabel", aLayout.pathLabel}, {"path", aLayout.path},
          {"browse", aLayout.browse},         {"load", aLayout.load},           {"fileStatus", aLayout.fileStatus}};
}

bool Overlap(const PixelRect& aOne, const PixelRect& aOther) {
  return aOne.left < aOther.right && aOther.left < aOne.right && aOne.top < aOther.bottom && aOther.top < aOne.bottom;
}

bool IsInside(const PixelRect& aInner, const PixelRect& aOuter) {
  return aInner.left > aOuter.left && aInner.right < aOuter.right && aInner.top > aOuter.top &&
         aInner.bottom < aOuter.bottom;
}

void ExpectApart(const std::vector<Named>& aPlaces) {
  for (std::size_t one = 0; one < aPlaces.size(); ++one) {
    EXPECT_FALSE(aPlaces[one].place.IsEmpty()) << aPlaces[one].name;
    for (std::size_t other = one + 1; other < aPlaces.size(); ++other)
      EXPECT_FALSE(Overlap(aPlaces[one].place, aPlaces[other].place))
          << aPlaces[one].name << " and " << aPlaces[other].name;
  }
}

class CameraLayouts : public testing::TestWithParam<CameraMetrics> {};

} // namespace

TEST_P(CameraLayouts, EverySize_HasEverythingApartAndInside) {
  for (const int width : {775, 1000, 1600}) {
    for (const int height : {582, 700, 2500}) {
      CameraMetrics metrics = GetParam();
      metrics.width = width;
      metrics.height = height;

      const CameraLayout layout = LayOutCameraBridge(metrics);

      SCOPED_TRACE(std::to_string(width) + "x" + std::to_string(height));
      std::vector<Named> setup = GetSetup(layout);
      for (const Named& named : GetCameraFile(layout))
        setup.push_back(named);
      ExpectApart(setup);
      for (const Named& named : setup)
        EXPECT_TRUE(IsInside(named.place, layout.setupBox)) << named.name;
      const std::vector<Named> statistics = {
          {"sent", layout.sent}, {"received", layout.received}, {"reset", layout.reset}};
      ExpectApart(statistics);
      for (const Named& named : statistics)
        EXPECT_TRUE(IsInside(named.place, layout.statisticsBox)) << named.name;
      ExpectApart({{"setup", layout.setupBox},
                   {"statistics", layout.statisticsBox},
                   {"PoCL", layout.poCL},
                   {"browser", layout.browser}});
      const PixelRect window = {0, 0, width, height};
      for (const PixelRect& part : {layout.setupBox, layout.statisticsBox, layout.poCL, layout.browser})
        EXPECT_TRUE(IsInside(part, window));
    }
  }
}

TEST_P(CameraLayouts, LargerWindow_GivesTheBrowserAllThatItHasMore) {
  const CameraLayout before = LayOutCameraBridge(GetParam());
  CameraMetrics metrics = GetParam();
  metrics.width += 500;
  metrics.height += 900;

  const CameraLayout after = LayOutCameraBridge(metrics);

  EXPECT_EQ(after.browser.bottom, before.browser.bottom + 900);
  EXPECT_EQ(after.browser.right, before.browser.right + 500);
  EXPECT_EQ(after.browser.top, before.browser.top);
}

TEST_P(CameraLayouts, SmallestWindow_HasTheTextsWhole) {
  const CameraMetrics& metrics = GetParam();
  const CameraLayout layout = LayOutCameraBridge(metrics);

  EXPECT_GE(layout.synchronization.GetWidth(), metrics.switchWidth);
  EXPECT_GE(layout.poCL.GetWidth(), metrics.switchWidth);
  EXPECT_GE(layout.probe.GetWidth(), metrics.buttonWidth);
  EXPECT_GE(layout.browser.GetWidth(), metrics.browserWidth);
}

TEST_P(CameraLayouts, WithoutCameraFile_ClosesTheGap) {
  const CameraLayout with = LayOutCameraBridge(GetParam());
  CameraMetrics metrics = GetParam();
  metrics.hasCameraFile = false;

  const CameraLayout without = LayOutCameraBridge(metrics);

  for (const Named& named : GetCameraFile(without))
    EXPECT_TRUE(named.place.IsEmpty()) << named.name;
  EXPECT_LT(without.sources.top - without.genCPStatus.bottom, with.sources.top - with.genCPStatus.bottom);
  EXPECT_TRUE(IsInside(without.synchronization, without.setupBox));
}

INSTANTIATE_TEST_SUITE_P(Fonts, CameraLayouts, testing::Values(kSmallFont, kLargeFont),
                         [](const auto& aFont) { return aFont.index == 0 ? "Of9Points" : "Of12Points"; });

} // namespace krgui
