#include "logic/display/nearestscaler.h"

#include <gmock/gmock.h>

#include <numeric>
#include <random>

using namespace krgui;

namespace {

std::vector<std::uint32_t> Scale(NearestScaler& aScaler, const std::vector<std::uint32_t>& aSource, int aSourceWidth,
                                 const PixelRect& aRect, int aWidth, int aHeight) {
  std::vector<std::uint32_t> destination(static_cast<std::size_t>(aWidth * aHeight), 0xDEAD);
  aScaler.Scale({aSource.data(), static_cast<std::size_t>(aSourceWidth)}, aRect,
                {destination.data(), static_cast<std::size_t>(aWidth)}, aWidth, aHeight);
  return destination;
}

} // namespace

TEST(NearestScaler, TwiceTheSize_DoublesEachPixel) {
  NearestScaler scaler;

  EXPECT_THAT(Scale(scaler, {1, 2, 3, 4}, 2, {0, 0, 2, 2}, 4, 4),
              testing::ElementsAre(1, 1, 2, 2, 1, 1, 2, 2, 3, 3, 4, 4, 3, 3, 4, 4));
}

TEST(NearestScaler, AThirdOfTheSize_TakesTheMiddleOfThree) {
  NearestScaler scaler;
  std::vector<std::uint32_t> source(9);
  std::iota(source.begin(), source.end(), 0);

  EXPECT_THAT(Scale(scaler, source, 9, {0, 0, 9, 1}, 3, 1), testing::ElementsAre(1, 4, 7));
}

TEST(NearestScaler, PartOfTheSource_TakesNothingFromOutside) {
  NearestScaler scaler;
  std::vector<std::uint32_t> source(16);
  std::iota(source.begin(), source.end(), 0);

  EXPECT_THAT(Scale(scaler, source, 4, {1, 2, 3, 4}, 2, 2), testing::ElementsAre(9, 10, 13, 14));
}

TEST(NearestScaler, EmptyPartOrDestination_DoesNothing) {
  NearestScaler scaler;

  EXPECT_THAT(Scale(scaler, {1, 2}, 2, {1, 0, 1, 1}, 1, 1), testing::ElementsAre(0xDEAD));
  EXPECT_THAT(Scale(scaler, {1, 2}, 2, {0, 0, 2, 1}, 0, 0), testing::IsEmpty());
}

TEST(NearestScaler, AnySizes_EqualAPlainLoopOverThePixelsUnderTheCentres) {
  NearestScaler scaler;
  std::mt19937 random(3);
  std::uniform_int_distribution<int> size(1, 70);
  for (int i = 0; i < 2000; ++i) {
    const int sourceWidth = size(random);
    const int sourceHeight = size(random);
    const int width = size(random);
    const int height = size(random);
    std::vector<std::uint32_t> source(static_cast<std::size_t>(sourceWidth * sourceHeight));
    for (std::uint32_t& pixel : source)
      pixel = static_cast<std::uint32_t>(random());

    const auto scaled = Scale(scaler, source, sourceWidth, {0, 0, sourceWidth, sourceHeight}, width, height);

    for (int y = 0; y < height; ++y)
      for (int x = 0; x < width; ++x) {
        const int sourceX = int((x + 0.5) * sourceWidth / width);
        const int sourceY = int((y + 0.5) * sourceHeight / height);
        ASSERT_EQ(scaled[static_cast<std::size_t>(y * width + x)],
                  source[static_cast<std::size_t>(sourceY * sourceWidth + sourceX)])
            << sourceWidth << "x" << sourceHeight << " to " << width << "x" << height << " at " << x << "," << y;
      }
  }
}
