#include "stopsignal.h"

#include <gtest/gtest.h>

#include <csignal>

namespace krapps {
namespace {

volatile std::sig_atomic_t gFormerCalls = 0;

TEST(StopSignal, EachSignal_WhileItLives_SetsTheFlagAlone) {
  for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
    const StopSignal stop;
    EXPECT_FALSE(stop.IsRaised());

    std::raise(signal);

    EXPECT_TRUE(stop.IsRaised());
    EXPECT_EQ(stop.GetSignal(), signal);
    EXPECT_EQ(stop.GetExitCode(), 128 + signal);
  }
}

TEST(StopSignal, SecondSignal_WhileItLives_DoesWhatItDidBefore) {
  for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
    gFormerCalls = 0;
    const auto original = std::signal(signal, [](int) { gFormerCalls = gFormerCalls + 1; });
    const StopSignal stop;
    std::raise(SIGINT);
    EXPECT_EQ(gFormerCalls, 0);

    std::raise(signal);

    EXPECT_EQ(gFormerCalls, 1);
    EXPECT_EQ(stop.GetSignal(), SIGINT);
    std::signal(signal, original);
  }
}

TEST(StopSignal, SignalThatIsIgnored_StaysSo) {
  const auto original = std::signal(SIGHUP, SIG_IGN);
  {
    const StopSignal stop;

    std::raise(SIGHUP);

    EXPECT_FALSE(stop.IsRaised());
  }
  EXPECT_EQ(std::signal(SIGHUP, original), SIG_IGN);
}

TEST(StopSignal, Destruction_FormerActions_AreThereAgain) {
  for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
    gFormerCalls = 0;
    const auto original = std::signal(signal, [](int) { gFormerCalls = gFormerCalls + 1; });
    {
      const StopSignal stop;
      std::raise(signal);
    }
    EXPECT_EQ(gFormerCalls, 0);

    std::raise(signal);

    EXPECT_EQ(gFormerCalls, 1);
    std::signal(signal, original);
  }
}

} // namespace
} // namespace krapps
