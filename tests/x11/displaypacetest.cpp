// The display at the camera's pace: frames come from threads of their own, and what counts is what is on the screen,
// read over another connection to the X server. Each frame is of one colour, which is its number.

#include "krgui/krdisplaywnd.h"

#include "await.h"
#include "plainframes.h"
#include "screenreader.h"
#include "spawning.h"
#include "testwnd.h"
#include "windowwait.h"

#include <QLayout>
#include <QTimer>

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <set>
#include <string>
#include <sys/wait.h>
#include <thread>
#include <vector>

namespace {

using krgui::WaitFor;

constexpr std::uint32_t kWidth = 320;
constexpr std::uint32_t kHeight = 240;

enum class Giving { Copied, Held };

KrResult Give(KrDisplayWnd& aWindow, std::uint32_t aNumber, Giving aGiving) {
  const std::shared_ptr<const KrBuffer> frame = MakeFrame(kWidth, kHeight, aNumber);
  return aGiving == Giving::Held ? aWindow.DisplayHeld(frame, false) : aWindow.Display(*frame, false);
}

/// A camera that gives frames as fast as they are taken, until it ends.
class FastCamera {
public:
  FastCamera(KrDisplayWnd& aWindow, std::uint32_t aFirst, Giving aGiving = Giving::Copied)
      : mThread([this, &aWindow, aFirst, aGiving] {
          for (std::uint32_t number = aFirst; !mIsStopping; ++number)
            mFailures += Give(aWindow, number, aGiving).IsOK() ? 0 : 1;
        }) {}
  ~FastCamera() {
    mIsStopping = true;
    mThread.join();
    EXPECT_EQ(mFailures, 0);
  }
  FastCamera(const FastCamera&) = delete;
  FastCamera& operator=(const FastCamera&) = delete;

private:
  std::atomic<bool> mIsStopping = false;
  std::atomic<int> mFailures = 0;
  std::thread mThread;
};

QRect FindClient(const KrDisplayWnd& aWindow) {
  const QWidget* widget = aWindow.GetWidget();
  return {widget->mapToGlobal(QPoint(0, 0)), widget->size()};
}

/// Waits until frames reach the window while this thread handles its events.
[[nodiscard]] bool AwaitMoreShown(KrDisplayWnd& aWindow, std::uint64_t aCount = 10) {
  const std::uint64_t enough = aWindow.GetStatistics().shown + aCount;
  return WaitFor([&] { return aWindow.GetStatistics().shown >= enough; });
}

/// Clicks with the right button at a point of the screen.
void ClickRight(const QPoint& aPoint) {
  const pid_t process =
      Spawning({"xdotool", "mousemove", std::to_string(aPoint.x()), std::to_string(aPoint.y()), "click", "3"}).Start();
  ASSERT_GE(process, 0);
  int status = -1;
  ASSERT_EQ(waitpid(process, &status, 0), process);
  ASSERT_EQ(status, 0);
}

struct GivingCase {
  const char* name;
  Giving giving;
};

/// An open window that shows frame 0.
class DisplayPace : public testing::TestWithParam<GivingCase> {
protected:
  void SetUp() override {
    window.SetPosition(200, 150, kWidth, kHeight);
    ASSERT_TRUE(window.ShowModeless(0).IsOK());
    ASSERT_TRUE(krtest::AwaitExposed(window.GetWidget()));
    ASSERT_TRUE(Give(window, 0, Giving::Copied).IsOK());
    // The window manager may still move it.
    ASSERT_TRUE(WaitFor([&] { return screen.IsUniform(FindClient(window), GetFrameColor(0)); }));
    client = FindClient(window);
  }

  KrDisplayWnd window;
  ScreenReader screen;
  QRect client;
};

TEST_P(DisplayPace, WhileTheUserInterfaceThreadIsBlocked_FramesAreOnTheScreen) {
  constexpr int kFrames = 50;
  constexpr int kMostLost = kFrames * 5 / 100;
  constexpr std::chrono::milliseconds kPeriod(10);
  int found = 0;
  int lost = 0;

  std::thread camera([&] {
    auto next = std::chrono::steady_clock::now();
    for (std::uint32_t number = 1; number <= kFrames && lost <= kMostLost; ++number) {
      std::this_thread::sleep_until(next); // The camera's clock: a hundred frames a second.
      next += kPeriod;
      const bool isOnScreen =
          Give(window, number, GetParam().giving).IsOK() && screen.AwaitColor(client.center(), GetFrameColor(number));
      ++(isOnScreen ? found : lost);
    }
  });
  camera.join(); // This is the user-interface thread.

  EXPECT_GE(found * 100, kFrames * 95);
}

TEST_P(DisplayPace, AtFullRate_EveryGrabOfTheScreenIsOfOneFrame) {
  constexpr int kGrabs = 500;
  constexpr std::size_t kColors = 100;
  const auto end = std::chrono::steady_clock::now() + krtest::GetGenerousLimit();
  std::set<std::uint32_t> colors;
  int torn = 0;

  {
    const FastCamera camera(window, 1, GetParam().giving);
    // Of a camera that has no processor for itself, more grabs show the same frame.
    for (int grab = 0; grab < kGrabs || (colors.size() < kColors && std::chrono::steady_clock::now() < end); ++grab) {
      const std::vector<std::uint32_t> pixels = screen.Read(client);
      ASSERT_EQ(pixels.size(), std::size_t(kWidth) * kHeight);
      torn += std::count(pixels.begin(), pixels.end(), pixels.front()) == std::ssize(pixels) ? 0 : 1;
      colors.insert(pixels.front());
      QCoreApplication::processEvents();
    }
  }

  EXPECT_EQ(torn, 0);
  EXPECT_GE(colors.size(), kColors);
}

TEST_P(DisplayPace, ClosedAndReopenedUnderTwoCameras_ShowsFramesEachTime) {
  constexpr int kOpenings = 20;

  {
    const FastCamera first(window, 1, GetParam().giving);
    const FastCamera second(window, 1'000'000, Giving::Copied);
    for (int opening = 0; opening < kOpenings; ++opening) {
      ASSERT_TRUE(AwaitMoreShown(window));
      ASSERT_TRUE(window.Close().IsOK());
      ASSERT_EQ(window.GetHandle(), 0u);
      ASSERT_TRUE(window.ShowModeless(0).IsOK());
    }
  }

  ASSERT_TRUE(Give(window, 500'000, GetParam().giving).IsOK());
  EXPECT_TRUE(WaitFor([&] { return screen.Read(FindClient(window).center()) == GetFrameColor(500'000); }));
}

TEST_P(DisplayPace, ReparentedUnderTwoCameras_ShowsFramesInEachParent) {
  constexpr int kMoves = 20;
  ASSERT_TRUE(window.Close().IsOK());
  QWidget hosts[2];
  for (int i = 0; i < 2; ++i) {
    hosts[i].setGeometry(150 + i * 500, 200, 400, 300);
    hosts[i].show();
    ASSERT_TRUE(krtest::AwaitExposed(&hosts[i]));
  }
  ASSERT_TRUE(window.CreateIn(&hosts[0]).IsOK());

  {
    const FastCamera first(window, 1, GetParam().giving);
    const FastCamera second(window, 1'000'000, Giving::Copied);
    for (int move = 1; move <= kMoves; ++move) {
      ASSERT_TRUE(AwaitMoreShown(window));
      window.GetWidget()->setParent(&hosts[move % 2]);
      window.GetWidget()->show();
    }
  }

  ASSERT_TRUE(Give(window, 500'000, GetParam().giving).IsOK());
  EXPECT_TRUE(WaitFor([&] { return screen.Read(FindClient(window).center()) == GetFrameColor(500'000); }));
  ASSERT_TRUE(window.Close().IsOK());
}

TEST_P(DisplayPace, UnderAnotherWindow_FramesAreShownAroundIt) {
  QWidget other(nullptr, Qt::X11BypassWindowManagerHint);
  const QRect covered(client.topLeft() + QPoint(40, 30), QSize(120, 90));
  other.setGeometry(covered);
  other.setPalette(QColor(10, 200, 30));
  other.show();
  ASSERT_TRUE(WaitFor([&] { return screen.IsUniform(covered, 0x0AC81E); }));

  for (std::uint32_t number = 1; number <= 50; ++number) {
    ASSERT_TRUE(Give(window, number, GetParam().giving).IsOK());
    ASSERT_TRUE(WaitFor([&] { return screen.Read(client.bottomRight()) == GetFrameColor(number); }));
    ASSERT_TRUE(screen.IsUniform(covered, 0x0AC81E));
  }
  other.hide();

  EXPECT_TRUE(WaitFor([&] { return screen.IsUniform(client, GetFrameColor(50)); }));
}

TEST_P(DisplayPace, UnderItsMenu_FramesAreShownAroundIt) {
  // A click of the test before is not this one's first half, which would close the menu.
  QApplication::setDoubleClickInterval(0);
  ClickRight(client.topLeft() + QPoint(20, 20));
  int shown = 0;
  bool isMenuWhole = true;
  std::atomic<bool> isCameraDone = false;
  std::thread camera;
  // The menu runs a loop of its own, in which this goes on.
  QTimer look;
  QObject::connect(&look, &QTimer::timeout, &look, [&] {
    QWidget* menu = QApplication::activePopupWidget();
    if (isCameraDone && menu != nullptr)
      menu->close();
    if (menu == nullptr || camera.joinable() || !menu->windowHandle()->isExposed())
      return;
    const QRect inside = menu->geometry().adjusted(4, 4, -4, -4);
    camera = std::thread([&, inside] {
      // Painted when its texts are there and nothing of the image below is left.
      std::vector<std::uint32_t> menuPixels;
      while (menuPixels.empty() || std::set(menuPixels.begin(), menuPixels.end()).size() < 2 ||
             std::ranges::count(menuPixels, GetFrameColor(0)) > 0)
        menuPixels = screen.Read(inside);
      for (std::uint32_t number = 1; number <= 50; ++number) {
        const bool isShown = Give(window, number, GetParam().giving).IsOK() &&
                             screen.AwaitColor(client.bottomRight(), GetFrameColor(number));
        shown += isShown ? 1 : 0;
        isMenuWhole = isMenuWhole && screen.Read(inside) == menuPixels;
      }
      isCameraDone = true;
    });
  });
  look.start(10);

  const bool isMenuSeen = WaitFor([&] { return isCameraDone && QApplication::activePopupWidget() == nullptr; });
  if (camera.joinable())
    camera.join();

  ASSERT_TRUE(isMenuSeen);
  EXPECT_EQ(shown, 50);
  EXPECT_TRUE(isMenuWhole);
  EXPECT_TRUE(WaitFor([&] { return screen.IsUniform(client, GetFrameColor(50)); }));
}

INSTANTIATE_TEST_SUITE_P(Frames, DisplayPace,
                         testing::Values(GivingCase{"Copied", Giving::Copied}, GivingCase{"Held", Giving::Held}),
                         [](const auto& aInfo) { return aInfo.param.name; });

} // namespace
