// Drawing surfaces where nobody but the toolkit draws into its windows: the widget paints a picture.

#include "platform/drawingsurface.h"

#include "surfacedrawing.h"

#include <QImage>
#include <QWidget>

#include <gtest/gtest.h>

#include <climits>
#include <tuple>

namespace krgui {

namespace {

class PictureSurfaceTest : public testing::Test {
protected:
  bool Holds(const Grab& aPicture) const {
    const QImage* image = mSurface->GetPicture();
    if (image == nullptr || image->size() != QSize(aPicture.width, aPicture.height)) {
      return false;
    }
    for (int y = 0; y < aPicture.height; ++y) {
      for (int x = 0; x < aPicture.width; ++x) {
        if (image->pixel(x, y) != (aPicture.At(x, y) | 0xff000000)) {
          return false;
        }
      }
    }
    return true;
  }

  QWidget mWidget;
  std::unique_ptr<DrawingSurface> mSurface = MakeDrawingSurface(mWidget);
};

TEST_F(PictureSurfaceTest, WithoutAWindowSystem_IsTheOnlyKind) {
  EXPECT_FALSE(CanDrawNatively());
  for (const SurfaceKind kind :
       {SurfaceKind::SharedDescriptor, SurfaceKind::SharedSystemV, SurfaceKind::PlainPut, SurfaceKind::Invalidation}) {
    EXPECT_EQ(MakeDrawingSurface(mWidget, kind)->GetKind(), SurfaceKind::Invalidation);
  }
  EXPECT_FALSE(mSurface->IsLost());
}

TEST_F(PictureSurfaceTest, BeforeTheFirstFrame_ThereIsNoPicture) {
  EXPECT_EQ(mSurface->GetPicture(), nullptr);
  EXPECT_TRUE(mSurface->Begin(30, 20, kGenerousLimit));
  EXPECT_EQ(mSurface->GetPicture(), nullptr);
}

TEST_F(PictureSurfaceTest, Frame_IsThePicturePixelByPixel) {
  ASSERT_TRUE(Show(*mSurface, MakePicture(333, 217, 1)));

  EXPECT_TRUE(Holds(MakePicture(333, 217, 1)));
}

TEST_F(PictureSurfaceTest, FrameThatIsBeingDrawn_IsNotSeenYet) {
  ASSERT_TRUE(Show(*mSurface, MakePicture(100, 80, 1)));
  const auto target = mSurface->Begin(100, 80, kGenerousLimit);
  ASSERT_TRUE(target);

  Draw(target->canvas, MakePicture(100, 80, 2));

  EXPECT_TRUE(Holds(MakePicture(100, 80, 1)));
  EXPECT_TRUE(mSurface->Present({0, 0, 100, 80}, 2));
  EXPECT_TRUE(Holds(MakePicture(100, 80, 2)));
}

TEST_F(PictureSurfaceTest, Part_PresentsAllThatWasDrawn) {
  ASSERT_TRUE(Show(*mSurface, MakePicture(100, 80, 1), {10, 10, 20, 20}));

  EXPECT_TRUE(Holds(MakePicture(100, 80, 1)));
}

TEST_F(PictureSurfaceTest, WindowIsResized_EachFrameFits) {
  std::uint32_t seed = 0;
  for (const auto& [width, height] : {std::pair(100, 80), {2000, 1100}, {1, 1}, {17, 300}}) {
    for (int frame = 0; frame < 3; ++frame) {
      const Grab picture = MakePicture(width, height, ++seed);

      ASSERT_TRUE(Show(*mSurface, picture));

      EXPECT_TRUE(Holds(picture)) << width << "x" << height;
    }
  }
}

TEST_F(PictureSurfaceTest, PaintThatKeepsACopy_KeepsWhatItWas) {
  ASSERT_TRUE(Show(*mSurface, MakePicture(100, 80, 1)));
  const QImage copy = *mSurface->GetPicture();
  const QImage expected = copy.copy();

  for (std::uint32_t seed = 2; seed < 6; ++seed) {
    ASSERT_TRUE(Show(*mSurface, MakePicture(100, 80, seed)));
    EXPECT_TRUE(Holds(MakePicture(100, 80, seed)));
  }

  EXPECT_EQ(copy, expected);
}

TEST_F(PictureSurfaceTest, PictureThatWasPresented_SaysWhatItStillHolds) {
  EXPECT_EQ(mSurface->Begin(100, 80, kGenerousLimit)->contentTag, 0U);
  ASSERT_TRUE(mSurface->Present({0, 0, 100, 80}, 1));
  EXPECT_EQ(mSurface->Begin(100, 80, kGenerousLimit)->contentTag, 0U);
  ASSERT_TRUE(mSurface->Present({0, 0, 100, 80}, 2));

  EXPECT_EQ(mSurface->Begin(100, 80, kGenerousLimit)->contentTag, 1U);
  EXPECT_EQ(mSurface->Begin(100, 80, kGenerousLimit)->contentTag, 0U);
  ASSERT_TRUE(mSurface->Present({0, 0, 100, 80}, 3));
  EXPECT_EQ(mSurface->Begin(100, 80, kGenerousLimit)->contentTag, 2U);
  EXPECT_EQ(mSurface->Begin(90, 80, kGenerousLimit)->contentTag, 0U);
}

TEST_F(PictureSurfaceTest, SizeAboveWhatAPictureCanHave_IsCut) {
  for (const auto& [width, height, cutWidth, cutHeight] :
       {std::tuple(32768, 2, 32767, 2), {2, INT_MAX, 2, 32767}, {32767, 1, 32767, 1}}) {
    const auto target = mSurface->Begin(width, height, kGenerousLimit);

    ASSERT_TRUE(target);
    EXPECT_EQ(target->canvas.width, cutWidth);
    EXPECT_EQ(target->canvas.height, cutHeight);
    EXPECT_TRUE(mSurface->Present({0, 0, width, height}, 1));
  }
}

TEST_F(PictureSurfaceTest, EmptySize_GivesNothing) {
  for (const auto& [width, height] : {std::pair(0, 10), {10, 0}, {-1, 10}, {10, -1}}) {
    EXPECT_FALSE(mSurface->Begin(width, height, kGenerousLimit)) << width << "x" << height;
    EXPECT_FALSE(mSurface->Present({0, 0, 10, 10}, 1));
  }
}

} // namespace

} // namespace krgui
