// What every window that the library offers has in common, by the classes that applications use, before it is shown.

#include "krbase/krlogger.h"
#include "krgui/krcamerabridgemanagerwnd.h"
#include "krgui/krdevicefinderwnd.h"
#include "krgui/krdisplaywnd.h"
#include "krgui/krgenbrowserwnd.h"
#include "krgui/krserialbridgemanagerwnd.h"
#include "krgui/krserialterminalwnd.h"
#include "testwnd.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>

namespace krgui {

namespace {

using WindowTest = std::function<void(KrWnd&)>;

/// Its destructor is the base's own business, so that each is made and ended as what it is.
template <typename Window>
void WithWindow(const WindowTest& aTest) {
  Window window;
  aTest(window);
}

struct WindowCase {
  const char* name;
  void (*run)(const WindowTest& aTest);
  const char* title; ///< Of a new one.
  int leastWidth, mostWidth, leastHeight, mostHeight;
};

class PublicWindows : public testing::TestWithParam<WindowCase> {};

} // namespace

TEST_P(PublicWindows, NeverShown_HaveNoHandleTheirTitleAndZeroPosition) {
  const WindowCase& window = GetParam();

  window.run([&window](KrWnd& aWindow) {
    EXPECT_EQ(aWindow.GetHandle(), 0U);
    EXPECT_EQ(aWindow.GetWidget(), nullptr);
    EXPECT_EQ(aWindow.GetTitle(), KrString(window.title));
    EXPECT_EQ(GetPosition(aWindow), (Position{0, 0, 0, 0}));
  });
}

TEST_P(PublicWindows, SetPosition_BelowTheLimits_RaisesTheSizeToThem) {
  const WindowCase& window = GetParam();

  window.run([&window](KrWnd& aWindow) {
    aWindow.SetPosition(10, 20, 5, 5);

    EXPECT_EQ(GetPosition(aWindow), (Position{10, 20, window.leastWidth, window.leastHeight}));
  });
}

TEST_P(PublicWindows, SetPosition_AboveTheLimits_CutsTheSizeToThem) {
  const WindowCase& window = GetParam();

  window.run([&window](KrWnd& aWindow) {
    aWindow.SetPosition(-10, -20, 100000, 100000);

    EXPECT_EQ(GetPosition(aWindow), (Position{-10, -20, window.mostWidth, window.mostHeight}));
  });
}

TEST_P(PublicWindows, NotOpen_AreNeitherClosedNorPumped) {
  const KrLogCapture log;

  GetParam().run([](KrWnd& aWindow) {
    const KrResult closed = aWindow.Close();
    const KrResult pumped = aWindow.DoEvents();

    EXPECT_EQ(closed.GetCodeNumber(), 28U);
    EXPECT_TRUE(closed.GetDescription().IsEmpty());
    EXPECT_EQ(pumped.GetCodeNumber(), 28U);
    EXPECT_EQ(pumped.GetDescription(), "The window is not currently open.");
  });
}

/// By hand, as the windows are described, not from the table that they are made by.
INSTANTIATE_TEST_SUITE_P(
    All, PublicWindows,
    testing::Values(WindowCase{"DeviceFinder", &WithWindow<KrDeviceFinderWnd>, "", 500, 800, 300, 600},
                    WindowCase{"Display", &WithWindow<KrDisplayWnd>, "", 30, 32768, 20, 32768},
                    WindowCase{"Browser", &WithWindow<KrGenBrowserWnd>, "", 300, 32768, 300, 32768},
                    WindowCase{"SerialTerminal", &WithWindow<KrSerialTerminalWnd>, "Device Serial Communication", 608,
                               608, 350, 2000},
                    WindowCase{"SerialBridgeManager", &WithWindow<KrSerialBridgeManagerWnd>,
                               "Serial Communication Bridge", 500, 800, 300, 600},
                    WindowCase{"CameraBridgeManager", &WithWindow<KrCameraBridgeManagerWnd>, "", 775, 1600, 582, 2500}),
    [](const auto& aInfo) { return std::string(aInfo.param.name); });

} // namespace krgui
