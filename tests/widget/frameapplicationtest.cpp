// The first window of a program without an application object, each case in a process of its own.

#include "testwnd.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <iostream>
#include <thread>

namespace krgui {

namespace {

/// Ends the process with the result's code as its text on standard error.
[[noreturn]] void Report(const KrResult& aResult) {
  std::cerr << "code " << aResult.GetCodeNumber() << ": " << aResult.GetDescription().CStr() << '\n';
  std::_Exit(0);
}

const auto kEndsNormally = testing::ExitedWithCode(0);

void UseDisplay(const char* aPlatform, const char* aDisplay, const char* aWaylandDisplay) {
  aPlatform == nullptr ? unsetenv("QT_QPA_PLATFORM") : setenv("QT_QPA_PLATFORM", aPlatform, 1);
  setenv("DISPLAY", aDisplay, 1);
  setenv("WAYLAND_DISPLAY", aWaylandDisplay, 1);
}

class FirstWindow : public testing::Test {
protected:
  void SetUp() override { testing::FLAGS_gtest_death_test_style = "threadsafe"; }
};

TEST_F(FirstWindow, WithoutApplication_MakesOneAndOpens) {
  const auto run = [] {
    UseDisplay("offscreen", "", "");
    TestWnd window;
    const KrResult result = window.ShowModeless(0);
    if (qobject_cast<QApplication*>(QCoreApplication::instance()) == nullptr || !window.GetWidget()->isVisible() ||
        !window.DoEvents().IsOK()) {
      std::_Exit(1);
    }
    Report(result);
  };

  EXPECT_EXIT(run(), kEndsNormally, "code 0");
}

TEST_F(FirstWindow, WithoutApplication_RunsModally) {
  const auto run = [] {
    UseDisplay("offscreen", "", "");
    TestWnd window;
    window.onInitDialog = [&] {
      QMetaObject::invokeMethod(
          window.GetWidget(), [&] { window.EndDialog(2); }, Qt::QueuedConnection);
    };
    Report(window.ShowModal(0));
  };

  EXPECT_EXIT(run(), kEndsNormally, "code 16386");
}

TEST_F(FirstWindow, ProgramsEnd_WithAWindowInAStaticObject_IsOrderly) {
  const auto run = [] {
    UseDisplay("offscreen", "", "");
    static TestWnd window;
    const KrResult result = window.ShowModeless(0);
    std::exit(result.IsOK() ? 0 : 1);
  };

  EXPECT_EXIT(run(), kEndsNormally, "");
}

struct DisplayCase {
  const char* name;
  const char* platform;
  const char* display;
  const char* waylandDisplay;
};

class NoDisplay : public testing::TestWithParam<DisplayCase> {
protected:
  void SetUp() override { testing::FLAGS_gtest_death_test_style = "threadsafe"; }
};

TEST_P(NoDisplay, EveryShow_FailsWithATextInsteadOfEndingTheProcess) {
  const auto run = [](auto aShow) {
    UseDisplay(GetParam().platform, GetParam().display, GetParam().waylandDisplay);
    TestWnd window;
    Report(aShow(window));
  };

  EXPECT_EXIT(run([](TestWnd& aWindow) { return aWindow.ShowModeless(0); }), kEndsNormally,
              "code 16384: .*no display can be opened");
  EXPECT_EXIT(run([](TestWnd& aWindow) { return aWindow.ShowModal(0); }), kEndsNormally,
              "code 16384: .*no display can be opened");
  EXPECT_EXIT(run([](TestWnd& aWindow) { return aWindow.Create(1, 0); }), kEndsNormally,
              "code 16384: .*no display can be opened");
}

INSTANTIATE_TEST_SUITE_P(Displays, NoDisplay,
                         testing::Values(DisplayCase{"NoneSet", nullptr, "", ""},
                                         DisplayCase{"ServerNotThere", "xcb", ":29999", ""},
                                         DisplayCase{"DisplayMalformed", "xcb", "nonsense", ""},
                                         DisplayCase{"WaylandNotThere", "wayland", "", "wayland-29999"},
                                         DisplayCase{"PlatformNotInstalled", "nosuchplatform", ":0", "wayland-0"}),
                         [](const auto& aInfo) { return aInfo.param.name; });

TEST_F(FirstWindow, SeveralPlatformsNamed_OneThatWorksSuffices) {
  const auto run = [] {
    UseDisplay("wayland;xcb;offscreen", ":29999", "wayland-29999");
    TestWnd window;
    Report(window.ShowModeless(0));
  };

  EXPECT_EXIT(run(), kEndsNormally, "code 0");
}

TEST_F(FirstWindow, WithAnApplicationWithoutWidgets_FailsWithAText) {
  const auto run = [] {
    UseDisplay("offscreen", "", "");
    int argumentCount = 1;
    char name[] = "host";
    char* arguments[] = {name, nullptr};
    const QCoreApplication application(argumentCount, arguments);
    TestWnd window;
    Report(window.ShowModeless(0));
  };

  EXPECT_EXIT(run(), kEndsNormally, "code 16384: .*QCoreApplication.*QApplication");
}

TEST_F(FirstWindow, OnAnotherThread_FailsWithAText) {
  const auto run = [] {
    UseDisplay("offscreen", "", "");
    TestWnd window;
    if (!window.ShowModeless(0).IsOK()) {
      std::_Exit(1);
    }
    std::thread([] {
      TestWnd other;
      Report(other.ShowModeless(0));
    }).join();
  };

  EXPECT_EXIT(run(), kEndsNormally, "code 16384: .*user-interface thread");
}

} // namespace

} // namespace krgui
