#include "logic/display/viewgeometry.h"

#include <gmock/gmock.h>

#include <cstdlib>
#include <random>

using namespace krgui;

namespace {

struct FitCase {
  const char* name;
  int clientWidth, clientHeight;
  unsigned imageWidth, imageHeight;
  double factor;
  PixelRect destination;
};

void PrintTo(const FitCase& aCase, std::ostream* aStream) {
  *aStream << aCase.name;
}

class ComputeFitViewTable : public testing::TestWithParam<FitCase> {};

// The expectations are worked out by hand.
INSTANTIATE_TEST_SUITE_P(
    Sizes, ComputeFitViewTable,
    testing::Values(FitCase{"HalfSizeFillsTheClientArea", 320, 240, 640, 480, 0.5, {0, 0, 320, 240}},
                    FitCase{"SmallImageIsEnlarged", 640, 480, 64, 48, 10.0, {0, 0, 640, 480}},
                    FitCase{"NarrowImageIsCentredBetweenBandsLeftAndRight", 300, 100, 50, 50, 2.0, {100, 0, 200, 100}},
                    FitCase{"FlatImageIsCentredBetweenBandsAboveAndBelow", 100, 300, 50, 50, 2.0, {0, 100, 100, 200}},
                    FitCase{"OddRemainderIsRoundedToTheRight", 301, 100, 100, 100, 1.0, {101, 0, 201, 100}},
                    FitCase{"EvenRemainderIsSplitEvenly", 302, 100, 100, 100, 1.0, {101, 0, 201, 100}},
                    FitCase{"OnePixelImageInASquare", 90, 90, 1, 1, 90.0, {0, 0, 90, 90}},
                    FitCase{"SameSizeIsDrawnOneToOne", 640, 480, 640, 480, 1.0, {0, 0, 640, 480}}),
    [](const auto& aInfo) { return aInfo.param.name; });

} // namespace

TEST_P(ComputeFitViewTable, WholeImage_GoesToTheCentredRectangle) {
  const FitCase& row = GetParam();

  const ViewArea view = ComputeFitView(row.clientWidth, row.clientHeight, row.imageWidth, row.imageHeight);

  EXPECT_DOUBLE_EQ(view.factor, row.factor);
  EXPECT_EQ(view.destinationRect, row.destination);
  EXPECT_EQ(view.sourceRect, (PixelRect{0, 0, static_cast<int>(row.imageWidth), static_cast<int>(row.imageHeight)}));
  EXPECT_EQ(view.clientRect, (PixelRect{0, 0, row.clientWidth, row.clientHeight}));
}

TEST(ComputeFitView, NothingToDivideBy_GivesAnEmptyViewAndAFactorOfOne) {
  struct Row {
    int clientWidth, clientHeight;
    unsigned imageWidth, imageHeight;
  };
  for (const Row& row : {Row{0, 100, 10, 10}, Row{100, 0, 10, 10}, Row{100, 100, 0, 10}, Row{100, 100, 10, 0},
                         Row{-5, 100, 10, 10}, Row{100, -5, 10, 10}}) {
    const ViewArea view = ComputeFitView(row.clientWidth, row.clientHeight, row.imageWidth, row.imageHeight);

    EXPECT_TRUE(view.sourceRect.IsEmpty());
    EXPECT_TRUE(view.destinationRect.IsEmpty());
    EXPECT_DOUBLE_EQ(view.factor, 1.0);
  }
}

TEST(ComputeFitView, AnySizes_StayInsideTheClientAreaTouchOneSideAndAreCentred) {
  std::mt19937 random(1);
  std::uniform_int_distribution<int> clientSize(1, 5000);
  std::uniform_int_distribution<unsigned> imageSize(1, 65535);
  for (int i = 0; i < 20000; ++i) {
    const int width = clientSize(random);
    const int height = clientSize(random);

    const ViewArea view = ComputeFitView(width, height, imageSize(random), imageSize(random));

    const PixelRect& rect = view.destinationRect;
    ASSERT_GE(rect.left, 0);
    ASSERT_GE(rect.top, 0);
    ASSERT_LE(rect.right, width);
    ASSERT_LE(rect.bottom, height);
    ASSERT_TRUE(rect.GetWidth() == width || rect.GetHeight() == height);
    ASSERT_LE(std::abs(rect.left - (width - rect.right)), 1);
    ASSERT_LE(std::abs(rect.top - (height - rect.bottom)), 1);
  }
}

TEST(ComputeBands, ImageBetweenLeftAndRight_FillsBothOverTheFullHeight) {
  const Bands bands = ComputeBands(ComputeFitView(300, 100, 50, 50));

  ASSERT_EQ(bands.count, 2);
  EXPECT_EQ(bands.rects[0], (PixelRect{0, 0, 100, 100}));
  EXPECT_EQ(bands.rects[1], (PixelRect{200, 0, 300, 100}));
}

TEST(ComputeBands, ImageBetweenTopAndBottom_FillsBothOverTheFullWidth) {
  const Bands bands = ComputeBands(ComputeFitView(100, 300, 50, 50));

  ASSERT_EQ(bands.count, 2);
  EXPECT_EQ(bands.rects[0], (PixelRect{0, 0, 100, 100}));
  EXPECT_EQ(bands.rects[1], (PixelRect{0, 200, 100, 300}));
}

TEST(ComputeBands, ImageThatFillsTheClientArea_HasNone) {
  EXPECT_EQ(ComputeBands(ComputeFitView(320, 240, 640, 480)).count, 0);
}

TEST(ComputeBands, AnySizes_CoverWithTheImageEveryPixelOnce) {
  std::mt19937 random(2);
  std::uniform_int_distribution<int> clientSize(1, 60);
  std::uniform_int_distribution<unsigned> imageSize(1, 200);
  for (int i = 0; i < 3000; ++i) {
    const int width = clientSize(random);
    const int height = clientSize(random);
    const ViewArea view = ComputeFitView(width, height, imageSize(random), imageSize(random));

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
