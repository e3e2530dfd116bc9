#include "acquisition/returnpause.h"

#include <gtest/gtest.h>

using namespace krviewer;

TEST(ReturnPause, CameraThatIsHeld_IsTriedLaterWhetherOrNotItIsGone) {
  const KrResult held(KrResult::Code::AccessDenied);

  EXPECT_EQ(GetReturnPause(held, false), kHeldPause);
  EXPECT_EQ(GetReturnPause(held, true), kHeldPause) << "What is heard of it does not end the wait.";
}

TEST(ReturnPause, CameraThatIsGone_IsTriedWhenItIsHeardOf) {
  EXPECT_EQ(GetReturnPause(KrResult::Code::ConnectionLost, true), std::nullopt);
}

TEST(ReturnPause, CameraThatAnswersAndCouldNotBeHad_IsTriedSoon) {
  EXPECT_EQ(GetReturnPause(KrResult::Code::Failed, false), kRetryPause);
}
