// Which drawing surface a window gets: the best one that its server and its pixels allow.

#include "platform/windowsurface.h"

#include "await.h"
#include "surfacedrawing.h"
#include "surfacewindow.h"
#include "xvfbserver.h"

#include <gtest/gtest.h>

#include <optional>

namespace krgui {

namespace {

using krtest::Await;

constexpr SurfaceKind kKinds[] = {SurfaceKind::SharedDescriptor, SurfaceKind::SharedSystemV, SurfaceKind::PlainPut};

// A window of another kind than its parent's, made without any toolkit; not shown.
class SpecialWindow {
public:
  // One that has a depth of its own, with red, green and blue in the usual places.
  explicit SpecialWindow(std::uint8_t aDepth) {
    const auto visual = FindVisual(aDepth);
    EXPECT_TRUE(visual) << "The server was expected to know this depth.";
    const xcb_colormap_t colors = xcb_generate_id(mConnection);
    xcb_create_colormap(mConnection, XCB_COLORMAP_ALLOC_NONE, colors, mScreen.root, visual.value_or(0));
    const std::uint32_t values[] = {0, colors};
    Create(aDepth, XCB_WINDOW_CLASS_INPUT_OUTPUT, visual.value_or(0), XCB_CW_BORDER_PIXEL | XCB_CW_COLORMAP, values);
  }
  // One without pixels.
  SpecialWindow() { Create(0, XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, 0, nullptr); }
  ~SpecialWindow() { xcb_disconnect(mConnection); }
  SpecialWindow(const SpecialWindow&) = delete;
  SpecialWindow& operator=(const SpecialWindow&) = delete;

  xcb_window_t GetID() const { return mWindow; }

private:
  std::optional<xcb_visualid_t> FindVisual(std::uint8_t aDepth) const {
    constexpr std::uint32_t kRed = 0xff0000;
    for (auto depth = xcb_screen_allowed_depths_iterator(&mScreen); depth.rem > 0; xcb_depth_next(&depth)) {
      for (auto visual = xcb_depth_visuals_iterator(depth.data); visual.rem > 0; xcb_visualtype_next(&visual)) {
        if (depth.data->depth == aDepth && visual.data->_class == XCB_VISUAL_CLASS_TRUE_COLOR &&
            visual.data->red_mask == kRed) {
          return visual.data->visual_id;
        }
      }
    }
    return std::nullopt;
  }
  void Create(std::uint8_t aDepth, std::uint16_t aClass, xcb_visualid_t aVisual, std::uint32_t aMask,
              const std::uint32_t* aValues) {
    auto* error =
        xcb_request_check(mConnection, xcb_create_window_checked(mConnection, aDepth, mWindow, mScreen.root, 10, 20,
                                                                 300, 200, 0, aClass, aVisual, aMask, aValues));
    EXPECT_EQ(error, nullptr);
    std::free(error);
  }

  xcb_connection_t* mConnection = xcb_connect(nullptr, nullptr);
  const xcb_screen_t& mScreen = *xcb_setup_roots_iterator(xcb_get_setup(mConnection)).data;
  const xcb_window_t mWindow = xcb_generate_id(mConnection);
};

TEST(SurfaceChoice, ServerThatSharesNoMemory_IsSentThePixels) {
  const XvfbServer server(24, {"-extension", "MIT-SHM"});
  const SurfaceWindow window(10, 20, 300, 200, server.GetDisplayName());
  for (const SurfaceKind kind : kKinds) {
    const auto surface = MakeWindowSurface(server.GetDisplayName(), window.GetID(), kind, GetFarLimit());
    ASSERT_TRUE(surface);
    EXPECT_EQ(surface->GetKind(), SurfaceKind::PlainPut);
    const Grab picture = MakePicture(300, 200, static_cast<std::uint32_t>(kind));

    ASSERT_TRUE(Show(*surface, picture));

    EXPECT_TRUE(IsSoonOnScreen(window, picture));
  }
}

TEST(SurfaceChoice, ScreenOfSixteenBits_HasNoSurface) {
  const XvfbServer server(16);
  const SurfaceWindow window(10, 20, 300, 200, server.GetDisplayName());
  for (const SurfaceKind kind : kKinds) {
    EXPECT_FALSE(MakeWindowSurface(server.GetDisplayName(), window.GetID(), kind, GetFarLimit()));
  }
}

TEST(SurfaceChoice, WindowWithoutPixels_HasNoSurface) {
  const SpecialWindow window;
  for (const SurfaceKind kind : kKinds) {
    EXPECT_FALSE(MakeWindowSurface({}, window.GetID(), kind, GetFarLimit()));
  }
}

TEST(SurfaceChoice, WindowWithAlpha_HasEachKind) {
  const SpecialWindow window(32);
  for (const SurfaceKind kind : kKinds) {
    const auto surface = MakeWindowSurface({}, window.GetID(), kind, GetFarLimit());
    ASSERT_TRUE(surface);
    EXPECT_EQ(surface->GetKind(), kind);
    for (std::uint32_t seed = 0; seed < 5; ++seed) {
      EXPECT_TRUE(Show(*surface, MakePicture(300, 200, seed)));
    }
    EXPECT_TRUE(Await([&] { return surface->Begin(300, 200, kGenerousLimit).has_value(); }));
    EXPECT_FALSE(surface->IsLost());
  }
}

TEST(SurfaceChoice, Invalidation_IsNoneOfAWindow) {
  const SurfaceWindow window(10, 20, 300, 200);

  EXPECT_FALSE(MakeWindowSurface({}, window.GetID(), SurfaceKind::Invalidation, GetFarLimit()));
}

} // namespace

} // namespace krgui
