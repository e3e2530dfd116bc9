// Every window that is closed while its threads are at something that takes long: closing returns, and leaves a window
// that can be opened again. How long it takes is measured by the benchmark of the windows.

#include "busywindows.h"

#include "krtransport/krtransport.h"

#include <gtest/gtest.h>

namespace {

class CloseWhileBusy : public testing::TestWithParam<krtest::BusyWindowCase> {
protected:
  static void SetUpTestSuite() {
    ASSERT_TRUE(KrInstallTransports({.gigEVision = false, .usb3Vision = false, .simulation = true}).IsOK());
  }
};

} // namespace

TEST_P(CloseWhileBusy, Close_ReturnsAndTheWindowIsGone) {
  const std::unique_ptr<krtest::BusyWindow> window = GetParam().make();
  bool wasOpen = false;
  KrResult closed = KrResult::Code::Failed;

  window->Run([&] {
    wasOpen = window->IsOpen();
    closed = window->Close();
  });

  EXPECT_TRUE(wasOpen);
  EXPECT_TRUE(closed.IsOK());
  EXPECT_FALSE(window->IsOpen());
}

INSTANTIATE_TEST_SUITE_P(Windows, CloseWhileBusy, testing::ValuesIn(krtest::GetBusyWindows()),
                         [](const auto& aInfo) { return std::string(aInfo.param.name); });
