// Writing where nobody reads any more, guarded: the signal does not come, and nothing else about signals changes.

#include "platform/brokenpipeguard.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>

namespace krgui {

namespace {

std::atomic<int> heard = 0;

// An application that counts the signal.
class BrokenPipe : public testing::Test {
protected:
  void SetUp() override {
    heard = 0;
    struct sigaction counting = {};
    counting.sa_handler = [](int) { ++heard; };
    ASSERT_EQ(sigaction(SIGPIPE, &counting, &mBefore), 0);
    int ends[2] = {-1, -1};
    ASSERT_EQ(pipe(ends), 0);
    close(ends[0]);
    mEnd = ends[1];
  }
  void TearDown() override {
    close(mEnd);
    sigaction(SIGPIPE, &mBefore, nullptr);
  }
  void Write() const {
    EXPECT_EQ(write(mEnd, "x", 1), -1);
    EXPECT_EQ(errno, EPIPE);
  }

private:
  struct sigaction mBefore = {};
  int mEnd = -1;
};

TEST_F(BrokenPipe, Guarded_IsNotHeardOf) {
  {
    const BrokenPipeGuard guard;
    Write();
  }

  EXPECT_EQ(heard, 0);
}

TEST_F(BrokenPipe, AfterTheGuard_IsHeardOfAgain) {
  { const BrokenPipeGuard guard; }

  Write();

  EXPECT_EQ(heard, 1);
}

TEST_F(BrokenPipe, GuardInsideAGuard_KeepsTheOuterOne) {
  {
    const BrokenPipeGuard outer;
    {
      const BrokenPipeGuard inner;
      Write();
    }
    Write();
  }

  EXPECT_EQ(heard, 0);
}

TEST_F(BrokenPipe, SignalThatTheApplicationKeepsBack_StaysItsOwn) {
  sigset_t signals, before;
  sigemptyset(&signals);
  sigaddset(&signals, SIGPIPE);
  pthread_sigmask(SIG_BLOCK, &signals, &before);
  Write();

  {
    const BrokenPipeGuard guard;
    Write();
  }

  EXPECT_EQ(heard, 0);
  pthread_sigmask(SIG_SETMASK, &before, nullptr);
  EXPECT_EQ(heard, 1);
}

} // namespace

} // namespace krgui
