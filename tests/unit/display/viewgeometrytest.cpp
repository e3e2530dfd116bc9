#include "logic/display/viewgeometry.h"

#include "onetooneview.h"

#include <gmock/gmock.h>

#include <cmath>

using namespace krgui;

namespace {

constexpr std::int32_t kBar = ViewGeometry::kBarThickness;
constexpr auto kHide = BarChange::Kind::Hide;
constexpr auto kPlace = BarChange::Kind::Place;

/// What one bar is told, worked out by hand.
struct BarRow {
  BarChange::Kind kind;
  PixelRect rect;
  int maximum, page, position;
};
constexpr BarRow kHidden{kHide, {}, 0, 0, 0};

struct LayoutRow {
  const char* name;
  int clientWidth, clientHeight;
  std::uint32_t imageWidth, imageHeight;
  double zoom; ///< 0 for Fit, 1 for one to one, else a custom factor.
  double factor;
  PixelRect view, destination, source, corner;
  BarRow horizontal, vertical;
};

const LayoutRow kLayouts[] = {
    {"fit: half the size fills the client area",
     320,
     240,
     640,
     480,
     0,
     0.5,
     {0, 0, 320, 240},
     {0, 0, 320, 240},
     {0, 0, 640, 480},
     {},
     kHidden,
     kHidden},
    {"fit: a small image is enlarged",
     640,
     480,
     64,
     48,
     0,
     10,
     {0, 0, 640, 480},
     {0, 0, 640, 480},
     {0, 0, 64, 48},
     {},
     kHidden,
     kHidden},
    {"fit: a narrow image is centred between left and right",
     300,
     100,
     50,
     50,
     0,
     2,
     {0, 0, 300, 100},
     {100, 0, 200, 100},
     {0, 0, 50, 50},
     {},
     kHidden,
     kHidden},
    {"fit: a flat image is centred between top and bottom",
     100,
     300,
     50,
     50,
     0,
     2,
     {0, 0, 100, 300},
     {0, 100, 100, 200},
     {0, 0, 50, 50},
     {},
     kHidden,
     kHidden},
    {"fit: an odd rest is rounded to the right",
     301,
     100,
     100,
     100,
     0,
     1,
     {0, 0, 301, 100},
     {101, 0, 201, 100},
     {0, 0, 100, 100},
     {},
     kHidden,
     kHidden},
    {"fit: a line too thin for a pixel has no destination",
     100,
     100,
     65535,
     1,
     0,
     100 / 65535.0,
     {0, 0, 100, 100},
     {0, 50, 100, 50},
     {0, 0, 65535, 1},
     {},
     kHidden,
     kHidden},
    {"one to one: both bars take their room and start centred",
     320,
     240,
     640,
     480,
     1,
     1,
     {0, 0, 302, 222},
     {0, 0, 302, 222},
     {169, 129, 471, 351},
     {302, 222, 320, 240},
     {kPlace, {0, 222, 302, 240}, 338 + 75, 75, 169},
     {kPlace, {302, 0, 320, 222}, 258 + 55, 55, 129}},
    {"one to one: a wide image has a corner beside its one bar",
     320,
     240,
     400,
     100,
     1,
     1,
     {0, 0, 320, 222},
     {0, 61, 320, 161},
     {40, 0, 360, 100},
     {302, 222, 320, 240},
     {kPlace, {0, 222, 320, 240}, 80 + 80, 80, 40},
     kHidden},
    {"one to one: a tall image has no corner",
     320,
     240,
     100,
     400,
     1,
     1,
     {0, 0, 302, 240},
     {101, 0, 201, 240},
     {0, 80, 100, 320},
     {},
     kHidden,
     {kPlace, {302, 0, 320, 240}, 160 + 60, 60, 80}},
    {"one to one: the vertical bar makes the width too small, the bar below lies outside",
     320,
     240,
     310,
     400,
     1,
     1,
     {0, 0, 302, 240},
     {0, 0, 302, 240},
     {4, 80, 306, 320},
     {},
     {kPlace, {0, 240, 302, 258}, 8 + 75, 75, 4},
     {kPlace, {302, 0, 320, 240}, 160 + 60, 60, 80}},
    {"one to one: the horizontal bar makes the height too small, the bar beside lies outside",
     320,
     240,
     400,
     230,
     1,
     1,
     {0, 0, 320, 222},
     {0, 0, 320, 222},
     {40, 4, 360, 226},
     {302, 222, 320, 240},
     {kPlace, {0, 222, 320, 240}, 80 + 80, 80, 40},
     {kPlace, {320, 0, 338, 222}, 8 + 55, 55, 4}},
    {"one to one: the same size needs no bars",
     640,
     480,
     640,
     480,
     1,
     1,
     {0, 0, 640, 480},
     {0, 0, 640, 480},
     {0, 0, 640, 480},
     {},
     kHidden,
     kHidden},
    {"custom: half a pixel is dropped across and counted down",
     101,
     101,
     101,
     101,
     1.5,
     1.5,
     {0, 0, 83, 83},
     {0, 0, 83, 83},
     {23, 24, 78, 79},
     {83, 83, 101, 101},
     {kPlace, {0, 83, 83, 101}, 68 + 20, 20, 34},
     {kPlace, {83, 0, 101, 83}, 69 + 20, 20, 34}},
};

void Zoom(ViewGeometry& aView, double aZoom) {
  if (aZoom == 0)
    aView.ZoomFit();
  else if (aZoom == 1)
    aView.ZoomOneToOne();
  else
    aView.ZoomIn(aZoom);
}

void ExpectBar(const BarChange& aChange, const ScrollBarModel& aBar, const BarRow& aRow) {
  EXPECT_EQ(aChange.kind, aRow.kind);
  EXPECT_EQ(aChange.rect, aRow.rect);
  EXPECT_EQ(aBar.GetMinimum(), 0);
  EXPECT_EQ(aBar.GetMaximum(), aRow.maximum);
  EXPECT_EQ(aBar.GetPage(), aRow.page);
  EXPECT_EQ(aBar.GetPosition(), aRow.position);
}

} // namespace

TEST(ViewGeometry_Update, FirstOfAView_LaysImageAndBarsOut) {
  for (const LayoutRow& row : kLayouts) {
    SCOPED_TRACE(row.name);
    const KrLogCapture log;
    ViewGeometry view;
    view.SetClient(row.clientWidth, row.clientHeight, kBar);
    Zoom(view, row.zoom);

    const BarChanges bars = view.Update(row.imageWidth, row.imageHeight);

    const ViewArea& area = view.GetArea();
    EXPECT_DOUBLE_EQ(view.GetFactor(), row.factor);
    EXPECT_EQ(area.clientRect, (PixelRect{0, 0, row.clientWidth, row.clientHeight}));
    EXPECT_EQ(area.viewRect, row.view);
    EXPECT_EQ(area.destinationRect, row.destination);
    EXPECT_EQ(area.sourceRect, row.source);
    EXPECT_EQ(area.cornerRect, row.corner);
    EXPECT_EQ(area.imageWidth, row.imageWidth);
    EXPECT_EQ(area.imageHeight, row.imageHeight);
    ExpectBar(bars.horizontal, view.GetBar(ViewAxis::Horizontal), row.horizontal);
    ExpectBar(bars.vertical, view.GetBar(ViewAxis::Vertical), row.vertical);
    EXPECT_THAT(CollectWarnings(log), testing::IsEmpty());
  }
}

TEST(ViewGeometry_Update, WithoutImageOrClientArea_HasNoSourceHidesTheBarsAndKeepsTheFactor) {
  struct Row {
    const char* name;
    int clientWidth, clientHeight;
    std::uint32_t imageWidth, imageHeight;
  };
  for (const Row& row : {Row{"client width 0", 0, 100, 10, 10}, Row{"client height 0", 100, 0, 10, 10},
                         Row{"image width 0", 100, 100, 0, 10}, Row{"image height 0", 100, 100, 10, 0},
                         Row{"client width below 0", -5, 100, 10, 10}, Row{"client height below 0", 100, -5, 10, 10}}) {
    SCOPED_TRACE(row.name);
    for (const double zoom : {0.0, 1.0, 2.5}) {
      ViewGeometry view = MakeOneToOne(50, 50, 100, 100);
      view.ZoomIn(3);
      Zoom(view, zoom);
      const double factor = view.GetFactor();
      view.SetClient(row.clientWidth, row.clientHeight, kBar);

      const BarChanges bars = view.Update(row.imageWidth, row.imageHeight);

      EXPECT_EQ(view.GetFactor(), factor);
      EXPECT_TRUE(view.GetArea().sourceRect.IsEmpty());
      EXPECT_TRUE(view.GetArea().GetCopyRect().IsEmpty());
      EXPECT_EQ(view.GetArea().cornerRect, PixelRect());
      EXPECT_EQ(view.GetArea().viewRect, view.GetArea().clientRect);
      EXPECT_EQ(bars.horizontal.kind, kHide);
      EXPECT_EQ(bars.vertical.kind, kHide);
    }
  }
}

TEST(ViewGeometry_Update, CustomFactor_BecomesFitWhenTheImageFitsTheClientArea) {
  struct Row {
    const char* name;
    int clientWidth, clientHeight;
    ZoomMode mode;
    double factor;
  };
  // An image of 100 x 100 at 1.2: 120 x 120.
  for (const Row& row : {Row{"wider and high enough", 200, 130, ZoomMode::Fit, 1.3},
                         Row{"wider and exactly as high", 200, 120, ZoomMode::Fit, 1.2},
                         Row{"wider, but not high enough", 200, 119, ZoomMode::Custom, 1.2},
                         Row{"exactly as wide and high enough", 120, 130, ZoomMode::Fit, 1.2},
                         Row{"exactly as wide, where the height is not asked for", 120, 110, ZoomMode::Fit, 1.1},
                         Row{"not as wide", 119, 130, ZoomMode::Custom, 1.2}}) {
    SCOPED_TRACE(row.name);
    ViewGeometry view;
    view.SetClient(row.clientWidth, row.clientHeight, kBar);
    view.ZoomIn(1.2);

    view.Update(100, 100);

    EXPECT_EQ(view.GetZoomMode(), row.mode);
    EXPECT_DOUBLE_EQ(view.GetFactor(), row.factor);
  }
}

TEST(ViewGeometry_Zoom, Operations_ChangeModeAndFactor) {
  ViewGeometry view;
  EXPECT_EQ(view.GetZoomMode(), ZoomMode::Fit);
  EXPECT_EQ(view.GetFactor(), 1.0);

  view.ZoomIn(1.5);
  EXPECT_EQ(view.GetZoomMode(), ZoomMode::Custom);
  EXPECT_DOUBLE_EQ(view.GetFactor(), 1.5);
  view.ZoomOut(1.2);
  EXPECT_EQ(view.GetZoomMode(), ZoomMode::Custom);
  EXPECT_DOUBLE_EQ(view.GetFactor(), 1.25);
  view.ZoomOneToOne();
  EXPECT_EQ(view.GetZoomMode(), ZoomMode::OneToOne);
  view.ZoomFit();
  EXPECT_EQ(view.GetZoomMode(), ZoomMode::Fit);
}

TEST(ViewGeometry_Zoom, OneToOneOfAnImageThatFits_DoesNotBecomeFit) {
  const ViewGeometry view = MakeOneToOne(200, 200, 100, 100);

  EXPECT_EQ(view.GetZoomMode(), ZoomMode::OneToOne);
  EXPECT_EQ(view.GetFactor(), 1.0);
  EXPECT_EQ(view.GetArea().destinationRect, (PixelRect{50, 50, 150, 150}));
}

TEST(ViewGeometry_Zoom, OutUntilTheImageFits_BecomesFitAtTheNextUpdate) {
  ViewGeometry view = MakeOneToOne(320, 240, 640, 480);
  for (int step = 0; step < 8; ++step)
    view.ZoomOut(1.1);
  EXPECT_EQ(view.GetZoomMode(), ZoomMode::Custom);

  const BarChanges bars = view.Update(640, 480);

  EXPECT_EQ(view.GetZoomMode(), ZoomMode::Fit);
  EXPECT_EQ(view.GetFactor(), 0.5);
  EXPECT_EQ(bars.horizontal.kind, kHide);
  EXPECT_EQ(bars.vertical.kind, kHide);
}

TEST(ViewGeometry_Zoom, WithoutEnd_KeepsTheFactorANumberAboveZero) {
  ViewGeometry view;

  for (int step = 0; step < 20; ++step)
    view.ZoomIn(1e100);
  EXPECT_TRUE(std::isfinite(view.GetFactor()));
  for (int step = 0; step < 40; ++step)
    view.ZoomOut(1e100);
  EXPECT_GT(view.GetFactor(), 0.0);
}

TEST(ViewGeometry_Update, SameFactorAndSizes_LeavesTheBarsAlone) {
  ViewGeometry view = MakeOneToOne(320, 240, 640, 480);

  const BarChanges bars = view.Update(640, 480);

  EXPECT_EQ(bars.horizontal.kind, BarChange::Kind::None);
  EXPECT_EQ(bars.vertical.kind, BarChange::Kind::None);
  EXPECT_EQ(view.GetArea().sourceRect, (PixelRect{169, 129, 471, 351}));
}

TEST(ViewGeometry_Update, ClientSizeThicknessOrImageSizeThatChanged_PlacesTheBarsAgain) {
  struct Row {
    const char* name;
    int clientWidth, clientHeight, thickness;
    std::uint32_t imageWidth, imageHeight;
  };
  for (const Row& row : {Row{"client width", 321, 240, 18, 640, 480}, Row{"client height", 320, 241, 18, 640, 480},
                         Row{"bar thickness", 320, 240, 36, 640, 480}, Row{"image width", 320, 240, 18, 641, 480},
                         Row{"image height", 320, 240, 18, 640, 481}}) {
    SCOPED_TRACE(row.name);
    ViewGeometry view = MakeOneToOne(320, 240, 640, 480);
    view.SetClient(row.clientWidth, row.clientHeight, row.thickness);

    const BarChanges bars = view.Update(row.imageWidth, row.imageHeight);

    const PixelRect& inside = view.GetArea().viewRect;
    EXPECT_EQ(inside, (PixelRect{0, 0, row.clientWidth - row.thickness, row.clientHeight - row.thickness}));
    EXPECT_EQ(bars.horizontal.rect, (PixelRect{0, inside.bottom, inside.right, row.clientHeight}));
    EXPECT_EQ(bars.vertical.rect, (PixelRect{inside.right, 0, row.clientWidth, inside.bottom}));
  }
}

TEST(ViewGeometry_Update, MarkedDirty_PlacesTheBarsOnceAgain) {
  ViewGeometry view = MakeOneToOne(320, 240, 640, 480);
  view.MarkDirty();

  const BarChanges bars = view.Update(640, 480);

  EXPECT_EQ(bars.horizontal.kind, kPlace);
  EXPECT_EQ(bars.vertical.kind, kPlace);
  EXPECT_EQ(view.Update(640, 480).horizontal.kind, BarChange::Kind::None);
}
