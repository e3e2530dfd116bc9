#include "pollingpace.h"

#include <gtest/gtest.h>

#include <vector>

namespace krserial {

namespace {

using Pauses = std::vector<PollingPace::Duration>;
using std::chrono::milliseconds;

Pauses TakeSilence(PollingPace& aPace, int aQuestions) {
  Pauses pauses;
  for (int i = 0; i < aQuestions; ++i) {
    pauses.push_back(aPace.GetPause());
    aPace.OnSilence();
  }
  return pauses;
}

} // namespace

TEST(PollingPace, SilentLine_IsAskedMoreAndMoreRarely) {
  PollingPace pace;

  EXPECT_EQ(TakeSilence(pace, 7), (Pauses{milliseconds(20), milliseconds(40), milliseconds(80), milliseconds(160),
                                          milliseconds(200), milliseconds(200), milliseconds(200)}));
}

TEST(PollingPace, Traffic_MakesItQuickAgain) {
  PollingPace pace;
  TakeSilence(pace, 10);

  pace.OnTraffic();

  EXPECT_EQ(TakeSilence(pace, 2), (Pauses{milliseconds(20), milliseconds(40)}));
}

} // namespace krserial
