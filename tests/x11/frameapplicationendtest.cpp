// Windows whose objects outlive the application object, each case in a process of its own.

#include "krgui/krdisplaywnd.h"
#include "nativewindow.h"
#include "testwnd.h"
#include "windowwait.h"

#include <gtest/gtest.h>

#include <cstdlib>

namespace krgui {

namespace {

enum class Way { AsPopup, InForeign, AboveForeign };

template <typename Window>
KrResult Show(Window& aWindow, Way aWay, const NativeWindow& aNative) {
  switch (aWay) {
  case Way::AsPopup:
    return aWindow.ShowModeless(0);
  case Way::InForeign:
    return aWindow.Create(aNative.GetID(), 0);
  case Way::AboveForeign:
    break;
  }
  return aWindow.ShowModeless(aNative.GetID());
}

void Require(bool aCondition, int aCode) {
  if (!aCondition) {
    std::_Exit(aCode);
  }
}

/// Opens a window and ends the application object while it is open.
template <typename Window>
void OpenUnderAnApplication(Window& aWindow, Way aWay) {
  int argumentCount = 1;
  char name[] = "host";
  char* arguments[] = {name, nullptr};
  const QApplication application(argumentCount, arguments);
  const NativeWindow native(100, 100, 600, 400);
  Require(Show(aWindow, aWay, native).IsOK(), 2);
  Require(krtest::AwaitExposed(aWindow.GetWidget()), 3);
}

struct WayCase {
  const char* name;
  Way way;
};

class ApplicationsEnd : public testing::TestWithParam<WayCase> {
protected:
  void SetUp() override { testing::FLAGS_gtest_death_test_style = "threadsafe"; }
};

/// Ending normally also means that the leak sanitizer found nothing.
TEST_P(ApplicationsEnd, WithAnOlderWindowOpen_IsOrderly) {
  const auto run = [] {
    {
      KrDisplayWnd window;
      OpenUnderAnApplication(window, GetParam().way);
      Require(window.GetHandle() == 0, 4);
    }
    std::exit(0);
  };

  EXPECT_EXIT(run(), testing::ExitedWithCode(0), "");
}

TEST_P(ApplicationsEnd, WithAStaticWindowOpen_IsOrderly) {
  const auto run = [] {
    static KrDisplayWnd window;
    OpenUnderAnApplication(window, GetParam().way);
    std::exit(0);
  };

  EXPECT_EXIT(run(), testing::ExitedWithCode(0), "");
}

TEST_P(ApplicationsEnd, WithAnOlderWindowOpen_IsHeardOfOnce) {
  const auto run = [] {
    TestWnd window;
    window.SetPosition(20, 30, 400, 300);
    OpenUnderAnApplication(window, GetParam().way);
    Require(window.record->destroys == 1, 4);
    Require(GetPosition(window).width == 400, 5);
    Require(window.Close() == KrResult::Code::WrongState, 6);
    std::_Exit(0);
  };

  EXPECT_EXIT(run(), testing::ExitedWithCode(0), "");
}

/// The application object is then the library's own, and never ends.
TEST_P(ApplicationsEnd, ProcessEndsBeforeIt_WithAStaticWindowOpen_IsOrderly) {
  const auto run = [] {
    static KrDisplayWnd window;
    const NativeWindow native(100, 100, 600, 400);
    Require(Show(window, GetParam().way, native).IsOK(), 2);
    Require(window.DoEvents().IsOK(), 3);
    std::exit(0);
  };

  EXPECT_EXIT(run(), testing::ExitedWithCode(0), "");
}

INSTANTIATE_TEST_SUITE_P(Ways, ApplicationsEnd,
                         testing::Values(WayCase{"AsPopup", Way::AsPopup}, WayCase{"InForeign", Way::InForeign},
                                         WayCase{"AboveForeign", Way::AboveForeign}),
                         [](const auto& aInfo) { return aInfo.param.name; });

} // namespace

} // namespace krgui
