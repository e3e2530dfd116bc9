// How a window gives a device back that it needs a loop to let go.

#include "bridges/devicewindow.h"

#include "await.h"
#include "serialadapter.h"

#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <stdexcept>
#include <thread>
#include <utility>

using krviewer::DeviceWindow;
using krviewer::LentDevice;
using krviewer::Loan;

namespace {

class PlainWindow : public DeviceWindow {
public:
  KrWnd& GetWindow() override { throw std::logic_error("It has none."); }
  void TakeDevice(LentDevice&) override { ++taken; }
  void DropDevice() override {
    ++dropped;
    if (const auto action = std::exchange(whileDropping, nullptr))
      action();
  }

  int taken = 0;
  int dropped = 0;
  std::function<void()> whileDropping;
};

class DeviceWindowTest : public testing::Test {
protected:
  DeviceWindowTest() {
    loan.Lend(lent);
    window.Follow(loan);
  }
  /// The lender wants the device back; it has it when the thread ends.
  std::jthread TakeBack() {
    std::jthread lender([this] {
      loan.TakeBack();
      isTakenBack = true;
    });
    EXPECT_TRUE(krtest::Await([&] { return loan.IsWantedBack(); }));
    return lender;
  }

  krtest::SerialAdapter adapter;
  LentDevice lent{adapter};
  Loan<LentDevice> loan;
  PlainWindow window;
  std::atomic<bool> isTakenBack = false;
};

} // namespace

TEST_F(DeviceWindowTest, WantedBack_IsDroppedAndGivenBack) {
  ASSERT_EQ(window.taken, 1);
  std::jthread lender = TakeBack();

  window.Follow(loan);
  lender.join();

  EXPECT_EQ(window.dropped, 1);
  EXPECT_FALSE(window.HasDevice());
}

TEST_F(DeviceWindowTest, LookInTheLoopInWhichItIsDropped_LeavesItLent) {
  std::jthread lender = TakeBack();
  bool wasTakenBack = true;
  window.whileDropping = [&] {
    window.Follow(loan);
    wasTakenBack = isTakenBack || !loan.IsWantedBack();
  };

  window.Follow(loan);
  lender.join();

  EXPECT_FALSE(wasTakenBack);
  EXPECT_EQ(window.dropped, 1);
}

TEST_F(DeviceWindowTest, GivenBackInTheLoopInWhichItIsDropped_IsGivenBackThere) {
  std::jthread lender = TakeBack();
  LentDevice next{adapter};
  window.whileDropping = [&] {
    window.GiveBack(loan);
    lender.join();
    loan.Lend(next);
    window.Follow(loan);
  };

  window.Follow(loan);

  EXPECT_EQ(window.dropped, 2);
  EXPECT_TRUE(window.HasDevice()) << "the next one, which nobody wants back";
  EXPECT_EQ(loan.Borrow(), nullptr);
  window.GiveBack(loan);
}
