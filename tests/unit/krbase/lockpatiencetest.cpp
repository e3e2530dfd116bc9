#include "krbase/lockpatience.h"

#include <gtest/gtest.h>

#include <chrono>

namespace {

using krbase::LockPatience;
using namespace std::chrono_literals;

} // namespace

TEST(LockPatience, WaitInVain_MakesTheNextOnesShortUntilTheLockIsHad) {
  LockPatience patience(1000ms);
  EXPECT_EQ(patience.GetLimit(), 1000ms);

  for (int wait = 0; wait < 2; ++wait) {
    patience.Note(false);
    EXPECT_EQ(patience.GetLimit(), 100ms);
  }

  patience.Note(true);
  EXPECT_EQ(patience.GetLimit(), 1000ms);
}
