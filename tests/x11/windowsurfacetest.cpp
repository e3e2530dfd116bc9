// Drawing surfaces in windows of an X server, in each way in which pixels get there: what was presented is what is on
// the screen, whatever becomes of the window.

#include "platform/windowsurface.h"

#include "await.h"
#include "surfacedrawing.h"
#include "surfacewindow.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <filesystem>
#include <fstream>
#include <set>
#include <sstream>

namespace krgui {

namespace {

using krtest::Await;

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

// What the process has of the system that could be left behind.
struct Belongings {
  std::ptrdiff_t descriptors = 0;
  std::ptrdiff_t threads = 0;
  std::ptrdiff_t mappings = 0;
  std::ptrdiff_t segments = 0;
  /// Nothing is left behind of what came after the other count.
  bool IsWithin(const Belongings& aOther) const {
    return descriptors <= aOther.descriptors && threads <= aOther.threads && mappings <= aOther.mappings &&
           segments <= aOther.segments;
  }
  friend std::ostream& operator<<(std::ostream& aStream, const Belongings& aHas) {
    return aStream << aHas.descriptors << " descriptors, " << aHas.threads << " threads, " << aHas.mappings
                   << " mappings, " << aHas.segments << " segments";
  }
};

std::ptrdiff_t CountEntries(const char* aDirectory) {
  return std::distance(std::filesystem::directory_iterator(aDirectory), std::filesystem::directory_iterator());
}

Belongings CountBelongings() {
  Belongings has;
  has.descriptors = CountEntries("/proc/self/fd");
  has.threads = CountEntries("/proc/self/task");
  std::string line;
  for (std::ifstream maps("/proc/self/maps"); std::getline(maps, line);) {
    has.mappings += line.find("memfd:") != std::string::npos || line.find("SYSV") != std::string::npos ? 1 : 0;
  }
  for (std::ifstream segments("/proc/sysvipc/shm"); std::getline(segments, line);) {
    std::string key, number, mode, size;
    pid_t maker = 0;
    std::istringstream(line) >> key >> number >> mode >> size >> maker;
    has.segments += maker == getpid() ? 1 : 0;
  }
  return has;
}

// A picture with a rectangle of another one in it.
Grab Combine(Grab aPicture, const Grab& aInside, const PixelRect& aRect) {
  for (int y = aRect.top; y < aRect.bottom; ++y) {
    for (int x = aRect.left; x < aRect.right; ++x) {
      aPicture.pixels[static_cast<std::size_t>(y * aPicture.width + x)] = aInside.At(x, y);
    }
  }
  return aPicture;
}

TEST_P(WindowSurface, Frame_IsOnTheScreenPixelByPixel) {
  const SurfaceWindow window(40, 50, 333, 217);
  const auto surface = Make(window);
  const Grab picture = MakePicture(333, 217, 1);

  ASSERT_TRUE(Show(*surface, picture));

  EXPECT_TRUE(IsSoonOnScreen(window, picture));
}

TEST_P(WindowSurface, FrameLargerThanARequest_IsOnTheScreenPixelByPixel) {
  const SurfaceWindow window(40, 50, 1283, 721);
  const auto surface = Make(window);
  const Grab picture = MakePicture(1283, 721, 2);

  ASSERT_TRUE(Show(*surface, picture));

  EXPECT_TRUE(IsSoonOnScreen(window, picture));
}

TEST_P(WindowSurface, Part_IsPresentedAlone) {
  const Grab before = MakeUniform(900, 500, SurfaceWindow::kBackground);
  const Grab picture = MakePicture(900, 500, 3);
  for (const PixelRect& part : {PixelRect{31, 17, 150, 60}, PixelRect{1, 2, 899, 499}}) {
    const SurfaceWindow window(40, 50, 900, 500);
    const auto surface = Make(window);

    ASSERT_TRUE(Show(*surface, picture, part));

    EXPECT_TRUE(IsSoonOnScreen(window, Combine(before, picture, part)));
  }
}

TEST_P(WindowSurface, PartThatReachesOut_IsCut) {
  const SurfaceWindow window(40, 50, 200, 100);
  const auto surface = Make(window);
  const Grab picture = MakePicture(200, 100, 4);

  ASSERT_TRUE(Show(*surface, picture, {-1000000, -7, 2000000000, 2000000000}));

  EXPECT_TRUE(IsSoonOnScreen(window, picture));
}

TEST_P(WindowSurface, PartOfNothing_IsTakenAndSendsNothing) {
  const SurfaceWindow window(40, 50, 200, 100);
  const auto surface = Make(window);

  EXPECT_TRUE(Show(*surface, MakePicture(200, 100, 5), {50, 50, 50, 70}));
  EXPECT_TRUE(Show(*surface, MakePicture(200, 100, 6), {0, 0, 10, 10}));

  const Grab expected =
      Combine(MakeUniform(200, 100, SurfaceWindow::kBackground), MakePicture(200, 100, 6), {0, 0, 10, 10});
  EXPECT_TRUE(IsSoonOnScreen(window, expected));
}

TEST_P(WindowSurface, WindowIsResized_EachFrameFits) {
  SurfaceWindow window(40, 50, 100, 80);
  const auto surface = Make(window);
  constexpr std::pair<int, int> kSizes[] = {{100, 80}, {101, 83},    {400, 300}, {2000, 1200}, {640, 480},
                                            {17, 13},  {1500, 1100}, {1, 1},     {300, 700}};
  std::uint32_t seed = 0;
  for (const auto& [width, height] : kSizes) {
    window.Resize(width, height);
    for (int frame = 0; frame < 3; ++frame) {
      const Grab picture = MakePicture(width, height, ++seed);

      ASSERT_TRUE(Show(*surface, picture));

      EXPECT_TRUE(IsSoonOnScreen(window, picture)) << width << "x" << height;
    }
  }
}

TEST_P(WindowSurface, SizeAboveWhatTheServerCanName_ShowsTheUpperLeftPart) {
  const SurfaceWindow window(40, 50, 100, 80);
  const auto surface = Make(window);
  for (const auto& [width, height] : {std::pair(32768, 80), {100, 32768}}) {
    const auto target = surface->Begin(width, height, kGenerousLimit);
    ASSERT_TRUE(target) << width << "x" << height;
    EXPECT_EQ(target->canvas.width, std::min(width, 32767));
    EXPECT_EQ(target->canvas.height, std::min(height, 32767));
    const Grab picture = MakePicture(100, 80, static_cast<std::uint32_t>(width));
    for (int y = 0; y < picture.height; ++y) {
      for (int x = 0; x < picture.width; ++x) {
        target->canvas.plane.GetRow(y)[x] = picture.At(x, y);
      }
    }

    ASSERT_TRUE(surface->Present({0, 0, width, height}, 1));

    EXPECT_TRUE(IsSoonOnScreen(window, picture)) << width << "x" << height;
    EXPECT_FALSE(surface->IsLost());
  }
}

TEST_P(WindowSurface, EmptySize_GivesNothing) {
  const SurfaceWindow window(40, 50, 100, 80);
  const auto surface = Make(window);

  for (const auto& [width, height] : {std::pair(0, 10), {10, 0}, {-1, 10}, {10, -1}}) {
    EXPECT_FALSE(surface->Begin(width, height, kGenerousLimit)) << width << "x" << height;
  }

  EXPECT_FALSE(surface->IsLost());
}

TEST_P(WindowSurface, BufferThatWasPresented_StillHoldsItsContentAndSaysWhich) {
  const SurfaceWindow window(40, 50, 100, 80);
  const auto surface = Make(window);
  std::set<std::uint64_t> found;
  for (std::uint64_t tag = 11; tag < 40; ++tag) {
    const auto target = surface->Begin(100, 80, kGenerousLimit);
    ASSERT_TRUE(target);
    found.insert(target->contentTag);
    if (target->contentTag != 0) {
      EXPECT_EQ(*target->canvas.plane.pixels, 0xff000000 + target->contentTag);
    }
    Draw(target->canvas, MakeUniform(100, 80, static_cast<std::uint32_t>(tag)));
    ASSERT_TRUE(surface->Present({0, 0, 100, 80}, tag));
  }

  EXPECT_TRUE(found.contains(0));
  EXPECT_GE(found.size(), 28U);
}

TEST_P(WindowSurface, BufferThatWasDrawnButNotPresented_HasUnknownContent) {
  const SurfaceWindow window(40, 50, 100, 80);
  const auto surface = Make(window);
  // Until the buffer that is given is one that was presented: which one that is depends on the server.
  ASSERT_TRUE(Await([&] {
    const auto target = surface->Begin(100, 80, kGenerousLimit);
    return target && (target->contentTag == 5 || !surface->Present({0, 0, 100, 80}, 5));
  }));

  const auto again = surface->Begin(100, 80, kGenerousLimit);

  ASSERT_TRUE(again);
  EXPECT_EQ(again->contentTag, 0U);
}

TEST_P(WindowSurface, AnotherSize_MakesContentUnknown) {
  const SurfaceWindow window(40, 50, 100, 80);
  const auto surface = Make(window);
  for (std::uint64_t tag = 1; tag < 10; ++tag) {
    ASSERT_TRUE(Show(*surface, MakePicture(100, 80, 1), tag));
  }

  const auto target = surface->Begin(99, 80, kGenerousLimit);

  ASSERT_TRUE(target);
  EXPECT_EQ(target->contentTag, 0U);
}

TEST_P(WindowSurface, PresentWithoutBegin_IsRefused) {
  const SurfaceWindow window(40, 50, 100, 80);
  const auto surface = Make(window);
  ASSERT_TRUE(Show(*surface, MakePicture(100, 80, 1)));

  EXPECT_FALSE(surface->Present({0, 0, 100, 80}, 2));
}

TEST_P(WindowSurface, WindowGoesBetweenBeginAndPresent_NothingIsGivenAnyMore) {
  SurfaceWindow window(40, 50, 600, 400);
  const auto surface = Make(window);
  ASSERT_TRUE(Show(*surface, MakePicture(600, 400, 1)));
  const auto target = surface->Begin(600, 400, kGenerousLimit);
  ASSERT_TRUE(target);

  window.Destroy();
  Draw(target->canvas, MakePicture(600, 400, 2));
  surface->Present({0, 0, 600, 400}, 1);

  EXPECT_TRUE(Await([&] { return !surface->Begin(600, 400, kGenerousLimit); }));
  EXPECT_TRUE(surface->IsLost());
  EXPECT_FALSE(surface->Present({0, 0, 600, 400}, 1));
}

TEST_P(WindowSurface, WindowGoesWhileFramesAreSent_NothingIsGivenAnyMore) {
  SurfaceWindow window(40, 50, 300, 200);
  const auto surface = Make(window);
  std::atomic<int> shown = 0;
  std::thread drawing([&] {
    while (Show(*surface, MakePicture(300, 200, 1))) {
      ++shown;
    }
  });
  EXPECT_TRUE(Await([&] { return shown >= 20; }));

  window.Destroy();
  drawing.join();

  EXPECT_TRUE(surface->IsLost());
  EXPECT_FALSE(surface->Begin(300, 200, kGenerousLimit));
}

TEST_P(WindowSurface, SurfaceEndsWhileFramesAreSent_WindowAndServerGoOn) {
  const SurfaceWindow window(40, 50, 1200, 700);
  for (int round = 0; round < 20; ++round) {
    const auto surface = Make(window);
    ASSERT_TRUE(Show(*surface, MakeUniform(1200, 700, 0x102030)));
    ASSERT_TRUE(Show(*surface, MakeUniform(1200, 700, 0x405060)));
  }
  const auto surface = Make(window);

  ASSERT_TRUE(Show(*surface, MakePicture(1200, 700, 1)));

  EXPECT_TRUE(IsSoonOnScreen(window, MakePicture(1200, 700, 1)));
}

TEST_P(WindowSurface, FramesAtFullRate_AreNeverSeenInParts) {
  constexpr int kWidth = 500, kHeight = 400;
  const SurfaceWindow window(40, 50, kWidth, kHeight);
  const auto surface = Make(window);
  std::atomic<bool> isEnding = false;
  std::atomic<std::uint32_t> shown = 0;
  std::thread drawing([&] {
    while (!isEnding && Show(*surface, MakeUniform(kWidth, kHeight, shown & 0xffffff))) {
      ++shown;
    }
  });
  EXPECT_TRUE(Await([&] { return shown >= 3; }));

  constexpr std::size_t kColors = 20;
  const auto end = GetFarLimit();
  std::set<std::uint32_t> colors;
  int torn = 0;
  // Where the drawing thread waits for a processor, more grabs show the same frame.
  for (int grabs = 0; grabs < 300 || (colors.size() < kColors && std::chrono::steady_clock::now() < end); ++grabs) {
    const Grab grab = window.Take(kWidth, kHeight);
    torn += grab == MakeUniform(kWidth, kHeight, grab.At(0, 0)) ? 0 : 1;
    colors.insert(grab.At(0, 0));
  }
  isEnding = true;
  drawing.join();

  EXPECT_EQ(torn, 0);
  EXPECT_GE(colors.size(), kColors);
}

TEST_P(WindowSurface, ManySurfaces_LeaveNothingBehind) {
  SurfaceWindow window(40, 50, 320, 200);
  Make(window);
  const Belongings before = CountBelongings();

  for (int i = 0; i < 200; ++i) {
    const auto surface = Make(window);
    ASSERT_TRUE(Show(*surface, MakeUniform(320 + i % 7 * 100, 200, 0x123456)));
    ASSERT_TRUE(Show(*surface, MakeUniform(320, 200 + i % 5 * 100, 0x654321)));
  }

  // The server gives up what it was lent when it hears of the end.
  EXPECT_TRUE(Await([&] { return CountBelongings().IsWithin(before); })) << CountBelongings() << " after " << before;
}

TEST_P(WindowSurface, WindowsInsideAndAbove_KeepTheirPixels) {
  const SurfaceWindow window(40, 50, 300, 200);
  const SurfaceWindow inside(20, 30, 60, 40, {}, window.GetID());
  const SurfaceWindow above(240, 150, 200, 200);
  const auto surface = Make(window);
  const Grab picture = MakePicture(300, 200, 1);

  ASSERT_TRUE(Show(*surface, picture));

  const Grab covered = MakeUniform(300, 200, SurfaceWindow::kBackground);
  const Grab expected = Combine(Combine(picture, covered, {20, 30, 80, 70}), covered, {200, 100, 300, 200});
  EXPECT_TRUE(IsSoonOnScreen(window, expected));
}

TEST_P(WindowSurface, WindowThatIsNoMore_HasNoSurface) {
  SurfaceWindow window(40, 50, 300, 200);
  window.Destroy();

  EXPECT_FALSE(MakeWindowSurface({}, window.GetID(), GetParam(), GetFarLimit()));
}

TEST_P(WindowSurface, DisplayThatIsNone_HasNoSurface) {
  EXPECT_FALSE(MakeWindowSurface(":64999", 1, GetParam(), GetFarLimit()));
}

INSTANTIATE_TEST_SUITE_P(Kinds, WindowSurface,
                         testing::Values(SurfaceKind::SharedDescriptor, SurfaceKind::SharedSystemV,
                                         SurfaceKind::PlainPut),
                         [](const auto& aInfo) { return GetName(aInfo.param); });

} // namespace

} // namespace krgui
