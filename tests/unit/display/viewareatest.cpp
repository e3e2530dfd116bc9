#include "logic/display/viewarea.h"

#include "logic/display/viewgeometry.h"

#include <gmock/gmock.h>

#include <random>
#include <vector>

using namespace krgui;

namespace {

ViewArea MakeFit(int aClientWidth, int aClientHeight, std::uint32_t aImageWidth, std::uint32_t aImageHeight) {
  ViewGeometry view;
  view.SetClient(aClientWidth, aClientHeight, ViewGeometry::kBarThickness);
  view.Update(aImageWidth, aImageHeight);
  return view.GetArea();
}

} // namespace

TEST(ComputeBands, ImageBetweenLeftAndRight_FillsBothOverTheFullHeight) {
  const Bands bands = ComputeBands(MakeFit(300, 100, 50, 50));

  ASSERT_EQ(bands.count, 2);
  EXPECT_EQ(bands.rects[0], (PixelRect{0, 0, 100, 100}));
  EXPECT_EQ(bands.rects[1], (PixelRect{200, 0, 300, 100}));
}

TEST(ComputeBands, ImageBetweenTopAndBottom_FillsBothOverTheFullWidth) {
  const Bands bands = ComputeBands(MakeFit(100, 300, 50, 50));

  ASSERT_EQ(bands.count, 2);
  EXPECT_EQ(bands.rects[0], (PixelRect{0, 0, 100, 100}));
  EXPECT_EQ(bands.rects[1], (PixelRect{0, 200, 100, 300}));
}

TEST(ComputeBands, ImageThatFillsTheClientArea_HasNone) {
  EXPECT_EQ(ComputeBands(MakeFit(320, 240, 640, 480)).count, 0);
}

TEST(ComputeBands, AnySizes_CoverWithTheImageEveryPixelOnce) {
  std::mt19937 random(2);
  std::uniform_int_distribution<int> clientSize(1, 60);
  std::uniform_int_distribution<unsigned> imageSize(1, 200);
  for (int i = 0; i < 3000; ++i) {
    const int width = clientSize(random);
    const int height = clientSize(random);
    const ViewArea view = MakeFit(width, height, imageSize(random), imageSize(random));

    const Bands bands = ComputeBands(view);

    std::vector<int> covered(static_cast<std::size_t>(width * height), 0);
    const auto cover = [&](const PixelRect& aRect) {
      for (int y = aRect.top; y < aRect.bottom; ++y)
        for (int x = aRect.left; x < aRect.right; ++x)
          ++covered.at(static_cast<std::size_t>(y * width + x));
    };
    cover(view.destinationRect);
    for (int band = 0; band < bands.count; ++band)
      cover(bands.rects[band]);
    ASSERT_THAT(covered, testing::Each(1));
  }
}

TEST(ViewArea_GetCopyRect, Rows_CountFromTheTop) {
  ViewArea view;
  view.imageWidth = 100;
  view.imageHeight = 80;
  view.destinationRect = {0, 0, 30, 20};
  view.sourceRect = {10, 5, 40, 25};

  EXPECT_EQ(view.GetCopyRect(), (PixelRect{10, 55, 40, 75}));
}

TEST(ViewArea_GetCopyRect, LessThanAPixel_IsThatPixel) {
  struct Row {
    const char* name;
    PixelRect source, copy;
  };
  for (const Row& row : {Row{"inside", {10, 5, 10, 5}, {10, 75, 11, 76}},
                         Row{"at the left and the image's last row", {0, 0, 0, 0}, {0, 79, 1, 80}},
                         Row{"at the right and the image's first row", {100, 80, 100, 80}, {99, 0, 100, 1}}}) {
    SCOPED_TRACE(row.name);
    ViewArea view;
    view.imageWidth = 100;
    view.imageHeight = 80;
    view.destinationRect = {0, 0, 30, 20};
    view.sourceRect = row.source;

    EXPECT_EQ(view.GetCopyRect(), row.copy);
  }
}

TEST(ViewArea_GetCopyRect, NothingDrawn_IsEmpty) {
  ViewArea view;
  EXPECT_TRUE(view.GetCopyRect().IsEmpty());

  view.imageWidth = 100;
  view.imageHeight = 80;
  view.sourceRect = {0, 0, 100, 80};
  EXPECT_TRUE(view.GetCopyRect().IsEmpty());
}

TEST(FindImagePixel, Points_GiveThePixelUnderThem) {
  struct Row {
    const char* name;
    PixelPoint point;
    std::optional<PixelPoint> pixel;
  };
  // Three by two pixels, each 10 x 10, in the middle of 50 x 40.
  ViewArea view;
  view.clientRect = {0, 0, 50, 40};
  view.destinationRect = {10, 10, 40, 30};
  view.sourceRect = {0, 0, 3, 2};
  view.imageWidth = 3;
  view.imageHeight = 2;
  for (const Row& row : {Row{"first", {10, 10}, PixelPoint{0, 0}}, Row{"its last point", {19, 19}, PixelPoint{0, 0}},
                         Row{"last", {39, 29}, PixelPoint{2, 1}}, Row{"left of it", {9, 15}, std::nullopt},
                         Row{"above it", {15, 9}, std::nullopt}, Row{"right of it", {40, 15}, std::nullopt},
                         Row{"below it", {15, 30}, std::nullopt}}) {
    SCOPED_TRACE(row.name);
    EXPECT_EQ(FindImagePixel(view, row.point), row.pixel);
  }
}

TEST(FindImagePixel, WithoutImage_GivesNothing) {
  ViewArea view;
  view.clientRect = view.destinationRect = {0, 0, 50, 40};

  EXPECT_EQ(FindImagePixel(view, {5, 5}), std::nullopt);
}

TEST(ComputeMapping, FittedImage_IsWhereTheViewHasIt) {
  // 50 pixels on 100 of the device, 100 from the left, and two pixels of the device for one of the widget.
  const std::optional<KrDisplayMapping> mapping = ComputeMapping(MakeFit(300, 100, 50, 50), 2.0);

  ASSERT_TRUE(mapping.has_value());
  EXPECT_EQ(mapping->imageWidth, 50U);
  EXPECT_EQ(mapping->imageHeight, 50U);
  EXPECT_EQ(mapping->viewWidth, 150.0);
  EXPECT_EQ(mapping->viewHeight, 50.0);
  EXPECT_EQ(mapping->ToWidgetX(0), 50.0);
  EXPECT_EQ(mapping->ToWidgetX(50), 100.0);
  EXPECT_EQ(mapping->ToWidgetY(25), 25.0);
  EXPECT_EQ(mapping->ToImageX(60), 10.0);
  EXPECT_EQ(mapping->ToImageX(0), -50.0);
}

TEST(ComputeMapping, NothingDrawn_IsNone) {
  EXPECT_FALSE(ComputeMapping(MakeFit(300, 100, 0, 0), 1.0).has_value());
  EXPECT_FALSE(ComputeMapping(MakeFit(0, 0, 50, 50), 1.0).has_value());
}

TEST(ComputeMapping, AnyView_LeadsFromEachPixelToTheOneDrawnThere) {
  constexpr double kTolerance = 1e-6; // The middle of a pixel may lie between two of the image.
  std::mt19937 random(5);
  std::uniform_int_distribution<int> clientSize(1, 90);
  std::uniform_int_distribution<unsigned> imageSize(1, 200);
  std::uniform_int_distribution<int> zoomSteps(0, 12);
  std::uniform_real_distribution<double> pixelRatio(1.0, 3.0);
  for (int i = 0; i < 2000; ++i) {
    ViewGeometry view;
    const int width = clientSize(random);
    const int height = clientSize(random);
    const unsigned imageWidth = imageSize(random);
    const unsigned imageHeight = imageSize(random);
    view.SetClient(width, height, 5);
    view.Update(imageWidth, imageHeight);
    for (int step = zoomSteps(random); step > 0; --step)
      view.ZoomIn(1.5);
    view.CentreOn({width / 3, height / 3});
    view.Update(imageWidth, imageHeight);
    const double ratio = pixelRatio(random);
    const std::optional<KrDisplayMapping> mapping = ComputeMapping(view.GetArea(), ratio);

    for (int place = 0; place < std::min(width, height); ++place) {
      const std::optional<PixelPoint> pixel = FindImagePixel(view.GetArea(), {place, place});
      if (!pixel)
        continue;
      ASSERT_TRUE(mapping.has_value());
      const double x = mapping->ToImageX((place + 0.5) / ratio) - pixel->x;
      const double y = mapping->ToImageY((place + 0.5) / ratio) - pixel->y;
      ASSERT_TRUE(x > -kTolerance && x < 1 + kTolerance) << i << ": " << x;
      ASSERT_TRUE(y > -kTolerance && y < 1 + kTolerance) << i << ": " << y;
    }
  }
}
