#include "logic/display/nearestscaler.h"
#include "logic/pixelrect.h"

#include "vectortarget.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <functional>
#include <numeric>
#include <random>

using namespace krgui;

namespace {

/// A part of a source in each row and column of the destination, as a caller of the scaler goes through the rows.
std::vector<std::uint32_t> Scale(NearestScaler& aScaler, const std::vector<std::uint32_t>& aSource, int aSourceWidth,
                                 const PixelRect& aRect, int aWidth, int aHeight) {
  std::vector<std::uint32_t> destination(static_cast<std::size_t>(aWidth * aHeight), 0xDEAD);
  aScaler.PrepareColumns({aRect.left, aRect.right, aWidth, 0, aWidth});
  for (int y = 0; y < aHeight; ++y) {
    const int sourceRow = aRect.top + FindNearestSource(y, aRect.GetHeight(), aHeight);
    aScaler.ScaleRow(aSource.data() + sourceRow * aSourceWidth, destination.data() + y * aWidth, 0);
  }
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

TEST(NearestScaler, AnySizesOnEveryProcessor_EqualAPlainLoopOverThePixelsUnderTheCentres) {
  for (const std::int64_t target : GetVectorTargets()) {
    SCOPED_TRACE(VectorTargetChoice::GetName(target));
    const VectorTargetChoice choice(target);
    NearestScaler scaler;
    std::mt19937 random(3);
    std::uniform_int_distribution<int> size(1, 200);
    for (int i = 0; i < 1000; ++i) {
      const int sourceWidth = size(random);
      const int sourceHeight = size(random) / 20 + 1;
      const int width = size(random);
      const int height = size(random) / 20 + 1;
      std::vector<std::uint32_t> source(static_cast<std::size_t>(sourceWidth * sourceHeight));
      std::ranges::generate(source, std::ref(random));

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
}

TEST(NearestScaler, PartsOfRowsOnEveryProcessor_AreScaledWithBitsSetAndNothingBesideTouched) {
  for (const std::int64_t target : GetVectorTargets()) {
    SCOPED_TRACE(VectorTargetChoice::GetName(target));
    const VectorTargetChoice choice(target);
    NearestScaler scaler;
    std::mt19937 random(5);
    const auto roll = [&](int aFrom, int aTo) { return std::uniform_int_distribution<int>(aFrom, aTo)(random); };
    for (int i = 0; i < 3000; ++i) {
      // The source's part ends with its memory, so that a sanitizer sees what is read beyond it.
      ColumnMapping mapping;
      mapping.sourceLeft = roll(0, 30);
      mapping.sourceRight = mapping.sourceLeft + roll(1, 300);
      mapping.width = i % 10 == 0 ? mapping.sourceRight - mapping.sourceLeft : roll(1, 300);
      mapping.first = roll(0, mapping.width - 1);
      mapping.count = roll(1, mapping.width - mapping.first);
      std::vector<std::uint32_t> source(static_cast<std::size_t>(mapping.sourceRight));
      std::ranges::generate(source, std::ref(random));
      std::vector<std::uint32_t> destination(static_cast<std::size_t>(mapping.count) + 2, 0xDEAD);

      scaler.PrepareColumns(mapping);
      scaler.ScaleRow(source.data(), destination.data() + 1, 0xFF000000);

      std::vector<std::uint32_t> expected(destination.size(), 0xDEAD);
      for (int x = 0; x < mapping.count; ++x) {
        const double centre = mapping.first + x + 0.5;
        const int column = int(centre * (mapping.sourceRight - mapping.sourceLeft) / mapping.width);
        expected[static_cast<std::size_t>(x) + 1] =
            source[static_cast<std::size_t>(mapping.sourceLeft + column)] | 0xFF000000;
      }
      ASSERT_EQ(destination, expected) << mapping.sourceLeft << " to " << mapping.sourceRight << " in " << mapping.width
                                       << ", " << mapping.count << " from " << mapping.first;
    }
  }
}

TEST(FindNearestSource, GreatestSizes_GiveTheFirstAndTheLastPixel) {
  constexpr std::int32_t kMost = 2147483647;

  EXPECT_EQ(FindNearestSource(0, kMost, kMost), 0);
  EXPECT_EQ(FindNearestSource(kMost - 1, kMost, kMost), kMost - 1);
  EXPECT_EQ(FindNearestSource(kMost - 1, 1, kMost), 0);
  EXPECT_EQ(FindNearestSource(0, kMost, 1), kMost / 2);
}
