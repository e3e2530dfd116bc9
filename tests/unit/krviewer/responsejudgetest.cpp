#include "acquisition/responsetimer.h"

#include <gtest/gtest.h>

#include <chrono>

using krviewer::ResponseJudge;
using std::chrono::milliseconds;

namespace {

constexpr milliseconds kPrompt{199};
constexpr milliseconds kSlow{200};

void Note(ResponseJudge& aJudge, milliseconds aTook, int aTimes) {
  for (int i = 0; i < aTimes; ++i)
    aJudge.Note(aTook);
}

} // namespace

TEST(ResponseJudge, ThreeSlowAnswersInARow_AreSlow) {
  ResponseJudge judge;

  Note(judge, kSlow, 2);
  EXPECT_FALSE(judge.IsSlow());
  Note(judge, kSlow, 1);

  EXPECT_TRUE(judge.IsSlow());
}

TEST(ResponseJudge, SlowAnswersNowAndThen_AreNotSlow) {
  ResponseJudge judge;

  for (int i = 0; i < 10; ++i) {
    Note(judge, kSlow, 2);
    Note(judge, kPrompt, 1);
    EXPECT_FALSE(judge.IsSlow()) << i;
  }
}

TEST(ResponseJudge, SlowCamera_StaysSlowUntilThreePromptAnswers) {
  ResponseJudge judge;
  Note(judge, kSlow, 3);

  Note(judge, kPrompt, 2);
  Note(judge, kSlow, 1);
  Note(judge, kPrompt, 2);
  EXPECT_TRUE(judge.IsSlow());
  Note(judge, kPrompt, 1);

  EXPECT_FALSE(judge.IsSlow());
}
