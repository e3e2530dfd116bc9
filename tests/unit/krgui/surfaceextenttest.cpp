// How much memory a drawing surface has for its pixels.

#include "platform/surfaceextent.h"

#include <gtest/gtest.h>

namespace krgui {

namespace {

TEST(SurfaceExtent, Rows_AreWholeCacheLines) {
  EXPECT_EQ((SurfaceExtent{1, 1}).GetRowPixels(), 16U);
  EXPECT_EQ((SurfaceExtent{16, 1}).GetRowPixels(), 16U);
  EXPECT_EQ((SurfaceExtent{17, 1}).GetRowPixels(), 32U);
  EXPECT_EQ((SurfaceExtent{1920, 1080}).GetSize(), 1920U * 1080U * 4U);
}

TEST(SurfaceExtent, SizesWithoutPixels_AreEmpty) {
  EXPECT_FALSE((SurfaceExtent{1, 1}).IsEmpty());
  for (const SurfaceExtent& extent : {SurfaceExtent{0, 1}, {1, 0}, {-1, 1}, {1, -1}}) {
    EXPECT_TRUE(extent.IsEmpty()) << extent.width << "x" << extent.height;
  }
}

TEST(SurfaceExtent, SizesAboveWhatTheScreenCanName_AreCut) {
  EXPECT_EQ(SurfaceExtent::Cut(32767, 1), (SurfaceExtent{32767, 1}));
  EXPECT_EQ(SurfaceExtent::Cut(32768, 10), (SurfaceExtent{32767, 10}));
  EXPECT_EQ(SurfaceExtent::Cut(10, 2147483647), (SurfaceExtent{10, 32767}));
  EXPECT_TRUE(SurfaceExtent::Cut(0, 40000).IsEmpty());
}

TEST(SurfaceExtent, LargestSize_IsCountedWithoutOverflow) {
  EXPECT_EQ((SurfaceExtent{32767, 32767}).GetSize(), 32768ULL * 32767ULL * 4ULL);
}

TEST(SurfaceExtent, Rectangle_IsCutToWhatIsInside) {
  constexpr SurfaceExtent kExtent = {100, 50};

  EXPECT_EQ(kExtent.Clip({-5, 10, 200, 60}), (PixelRect{0, 10, 100, 50}));
  EXPECT_EQ(kExtent.Clip({1, 2, 3, 4}), (PixelRect{1, 2, 3, 4}));
  EXPECT_TRUE(kExtent.Clip({100, 0, 120, 50}).IsEmpty());
  EXPECT_TRUE(kExtent.Clip({0, -20, 100, 0}).IsEmpty());
}

TEST(SurfaceMemory, FirstTime_IsWhatIsNeeded) {
  EXPECT_EQ(ChooseSurfaceMemory(8'000'000, 0), 8'000'000U);
}

TEST(SurfaceMemory, ThatSuffices_IsKept) {
  EXPECT_EQ(ChooseSurfaceMemory(8'000'000, 8'000'000), 8'000'000U);
  EXPECT_EQ(ChooseSurfaceMemory(8'000'000, 10'000'000), 10'000'000U);
  EXPECT_EQ(ChooseSurfaceMemory(64, 1'000'000), 1'000'000U);
}

TEST(SurfaceMemory, ThatIsTooSmall_GrowsWithRoomForMore) {
  const std::size_t size = ChooseSurfaceMemory(8'000'000, 7'999'999);

  EXPECT_EQ(size, 10'000'000U);
  EXPECT_EQ(ChooseSurfaceMemory(9'000'000, size), size);
}

TEST(SurfaceMemory, ThatIsMuchTooLarge_IsGivenUp) {
  EXPECT_EQ(ChooseSurfaceMemory(1'000'000, 40'000'000), 1'250'000U);
}

TEST(SurfaceMemory, WindowDraggedLarger_GetsNewMemoryAFewTimes) {
  std::size_t size = 0;
  int changes = 0;
  for (std::int32_t width = 640; width <= 1920; ++width) {
    const std::size_t chosen = ChooseSurfaceMemory((SurfaceExtent{width, width * 9 / 16}).GetSize(), size);
    changes += chosen == size ? 0 : 1;
    size = chosen;
  }

  EXPECT_LE(changes, 12);
}

} // namespace

} // namespace krgui
