// Drawing surfaces in windows of an X server, in each way in which pixels get there: what was presented is what is on
// the screen.

#include "platform/windowsurface.h"

#include "surfacedrawing.h"
#include "surfacewindow.h"

#include <gtest/gtest.h>

namespace krgui {

namespace {

class WindowSurface : public testing::TestWithParam<SurfaceKind> {
protected:
  static std::unique_ptr<DrawingSurface> Make(const SurfaceWindow& aWindow) {
    auto surface = MakeWindowSurface({}, aWindow.GetID(), GetParam(), GetFarLimit());
    EXPECT_TRUE(surface);
    if (surface) {
      EXPECT_EQ(surface->GetKind(), GetParam());
    }
    return surface;
  }
};

TEST_P(WindowSurface, Frame_IsOnTheScreenPixelByPixel) {
  const SurfaceWindow window(40, 50, 333, 217);
  const auto surface = Make(window);
  const Grab picture = MakePicture(333, 217, 1);

  ASSERT_TRUE(Show(*surface, picture));

  EXPECT_TRUE(IsSoonOnScreen(window, picture));
}

TEST_P(WindowSurface, Part_IsPresentedAlone) {
  const SurfaceWindow window(40, 50, 200, 100);
  const auto surface = Make(window);
  const Grab picture = MakePicture(200, 100, 2);
  const PixelRect part = {31, 17, 150, 60};

  ASSERT_TRUE(Show(*surface, picture, part));

  Grab expected = picture;
  for (int y = 0; y < 100; ++y)
    for (int x = 0; x < 200; ++x)
      if (x < part.left || x >= part.right || y < part.top || y >= part.bottom)
        expected.pixels[static_cast<std::size_t>(y * 200 + x)] = SurfaceWindow::kBackground;
  EXPECT_TRUE(IsSoonOnScreen(window, expected));
}

INSTANTIATE_TEST_SUITE_P(Kinds, WindowSurface,
                         testing::Values(SurfaceKind::SharedDescriptor, SurfaceKind::SharedSystemV,
                                         SurfaceKind::PlainPut),
                         [](const auto& aInfo) { return GetName(aInfo.param); });

} // namespace

} // namespace krgui
