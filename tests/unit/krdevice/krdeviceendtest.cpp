#include "krdevice/krdeviceend.h"

#include "describedlink.h"
#include "krdevice/krdevicegev.h"
#include "krdevice/krstream.h"

#include <gmock/gmock.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>

#include <sys/wait.h>
#include <unistd.h>

// Each end is that of a child process, which says on standard error what happens to its devices.
namespace {

void Say(const std::string& aText) {
  [[maybe_unused]] const ssize_t written = write(STDERR_FILENO, aText.data(), aText.size());
}

std::unique_ptr<KrDevice> OpenDevice() {
  auto link = std::make_unique<FakeLink>();
  link->onGiveBack = [] { Say("given back\n"); };
  return std::make_unique<KrDeviceGEV>(std::move(link), MakeDeviceFields());
}

std::size_t CountGivenBack(const std::string& aSaid) {
  constexpr std::string_view kWords = "given back";
  std::size_t count = 0;
  for (std::size_t at = aSaid.find(kWords); at != std::string::npos; at = aSaid.find(kWords, at + 1))
    ++count;
  return count;
}

bool HasDefaultAction(int aSignal) {
  struct sigaction action = {};
  return sigaction(aSignal, nullptr, &action) == 0 && action.sa_handler == SIG_DFL;
}

// Ends within the wait for it, or never.
[[noreturn]] void AwaitEnd() {
  for (;;)
    pause();
}

[[noreturn]] void RaiseWithOpenDevice(int aSignal) {
  if (!KrGiveBackDevicesAtEnd().IsOK())
    Say("refused\n");
  const std::unique_ptr<KrDevice> device = OpenDevice();
  raise(aSignal);
  AwaitEnd();
}

class KrGiveBackDevicesAtEndDeathTest : public testing::Test {
protected:
  KrGiveBackDevicesAtEndDeathTest() { GTEST_FLAG_SET(death_test_style, "threadsafe"); }
};

using testing::Eq;

} // namespace

TEST_F(KrGiveBackDevicesAtEndDeathTest, EachSignal_DeviceOpen_GivesItBackAndEndsByThatSignal) {
  for (const int signal : {SIGINT, SIGTERM, SIGHUP, SIGQUIT, SIGPIPE, SIGALRM, SIGUSR1, SIGUSR2})
    EXPECT_EXIT(RaiseWithOpenDevice(signal), testing::KilledBySignal(signal), Eq("given back\n"));
}

TEST_F(KrGiveBackDevicesAtEndDeathTest, Exit_DeviceOpen_GivesItBackAndKeepsTheExitCode) {
  const auto exitWithOpenDevice = [] {
    EXPECT_TRUE(KrGiveBackDevicesAtEnd().IsOK());
    const std::unique_ptr<KrDevice> device = OpenDevice();
    exit(7);
  };

  EXPECT_EXIT(exitWithOpenDevice(), testing::ExitedWithCode(7), Eq("given back\n"));
}

TEST_F(KrGiveBackDevicesAtEndDeathTest, QuickExit_DeviceOpen_GivesItBackAndKeepsTheExitCode) {
  const auto exitWithOpenDevice = [] {
    EXPECT_TRUE(KrGiveBackDevicesAtEnd().IsOK());
    const std::unique_ptr<KrDevice> device = OpenDevice();
    std::quick_exit(7);
  };

  EXPECT_EXIT(exitWithOpenDevice(), testing::ExitedWithCode(7), Eq("given back\n"));
}

TEST_F(KrGiveBackDevicesAtEndDeathTest, WriteToAClosedPipe_DeviceOpen_GivesItBackAndEndsByTheBrokenPipe) {
  const auto writeWithOpenDevice = [] {
    EXPECT_TRUE(KrGiveBackDevicesAtEnd().IsOK());
    const std::unique_ptr<KrDevice> device = OpenDevice();
    int ends[2] = {};
    EXPECT_EQ(pipe(ends), 0);
    close(ends[0]);
    EXPECT_EQ(write(ends[1], "x", 1), -1);
    AwaitEnd();
  };

  EXPECT_EXIT(writeWithOpenDevice(), testing::KilledBySignal(SIGPIPE), Eq("given back\n"));
}

TEST_F(KrGiveBackDevicesAtEndDeathTest, CalledAgainAndAgainWhileTheSignalEndsTheProcess_EndsByItAllTheSame) {
  const auto callOnAndOn = [] {
    EXPECT_TRUE(KrGiveBackDevicesAtEnd().IsOK());
    const std::unique_ptr<KrDevice> device = OpenDevice();
    raise(SIGTERM);
    for (;;)
      static_cast<void>(KrGiveBackDevicesAtEnd().IsOK());
  };

  for (int run = 0; run < 10; ++run)
    EXPECT_EXIT(callOnAndOn(), testing::KilledBySignal(SIGTERM), Eq("given back\n"));
}

TEST_F(KrGiveBackDevicesAtEndDeathTest, ActionThatAnotherThreadSetsAgainAndAgain_TheProcessEnds) {
  const auto handleOnAndOn = [] {
    EXPECT_TRUE(KrGiveBackDevicesAtEnd().IsOK());
    const std::unique_ptr<KrDevice> device = OpenDevice();
    raise(SIGTERM);
    for (;;)
      signal(SIGTERM, SIG_IGN);
  };
  const auto isEndOfSignal = [](int aStatus) {
    return (WIFSIGNALED(aStatus) && WTERMSIG(aStatus) == SIGTERM) ||
           (WIFEXITED(aStatus) && WEXITSTATUS(aStatus) == 128 + SIGTERM);
  };

  EXPECT_EXIT(handleOnAndOn(), isEndOfSignal, Eq("given back\n"));
}

TEST_F(KrGiveBackDevicesAtEndDeathTest, Exit_WhileAStreamRuns_UnlocksParametersBeforeGivingBack) {
  const auto exitWhileStreaming = [] {
    EXPECT_TRUE(KrGiveBackDevicesAtEnd().IsOK());
    FakeBufferSource source;
    auto link = std::make_unique<DescribedLink>(MakeIntReg("TLParamsLocked", "0x20"), &source);
    DescribedLink& camera = *link;
    camera.onGiveBack = [&] { Say(camera.Peek(0x20) == 0 ? "unlocked\n" : "locked\n"); };
    KrDeviceGEV device(std::move(link), MakeDeviceFields());
    KrStream stream(device);
    EXPECT_TRUE(stream.Start().IsOK());
    Say(camera.Peek(0x20) == 1 ? "locked, then " : "not locked, then ");
    exit(7);
  };

  EXPECT_EXIT(exitWhileStreaming(), testing::ExitedWithCode(7), Eq("locked, then unlocked\n"));
}

TEST_F(KrGiveBackDevicesAtEndDeathTest, ForkedChild_DestroysTheParentsDeviceWithParameters_Returns) {
  const auto forkAndDestroy = [] {
    std::unique_ptr<KrDevice> device =
        std::make_unique<KrDeviceGEV>(std::make_unique<DescribedLink>(MakeIntReg("Gain", "0x20")), MakeDeviceFields());
    if (!device->GetParameters())
      _exit(3);
    const pid_t child = fork();
    if (child == 0) {
      device.reset();
      _exit(0);
    }
    int status = -1;
    waitpid(child, &status, 0);
    _exit(WIFEXITED(status) ? WEXITSTATUS(status) : 2);
  };

  EXPECT_EXIT(forkAndDestroy(), testing::ExitedWithCode(0), Eq(""));
}

TEST_F(KrGiveBackDevicesAtEndDeathTest, ForkedChild_DestroysTheParentsDevice_LeavesItAsItIs) {
  const auto forkAndDestroy = [] {
    auto link = std::make_unique<FakeLink>();
    FakeLink& watched = *link;
    std::unique_ptr<KrDevice> device = std::make_unique<KrDeviceGEV>(std::move(link), MakeDeviceFields());
    const krsystem::IDeviceLinkSink* const sink = watched.sink;
    const pid_t child = fork();
    if (child == 0) {
      device.reset();
      _exit(watched.sink == sink && sink ? 0 : 1);
    }
    int status = -1;
    waitpid(child, &status, 0);
    _exit(WIFEXITED(status) ? WEXITSTATUS(status) : 2);
  };

  EXPECT_EXIT(forkAndDestroy(), testing::ExitedWithCode(0), Eq(""));
}

TEST_F(KrGiveBackDevicesAtEndDeathTest, Exit_DeviceDestroyedBefore_NothingIsGivenBack) {
  const auto exitAfterwards = [] {
    EXPECT_TRUE(KrGiveBackDevicesAtEnd().IsOK());
    OpenDevice().reset();
    exit(0);
  };

  EXPECT_EXIT(exitAfterwards(), testing::ExitedWithCode(0), Eq(""));
}

TEST_F(KrGiveBackDevicesAtEndDeathTest, Exit_DeviceOfAStaticObject_IsGivenBackOnceAndThenDestroyed) {
  const auto exitWithStaticDevice = [] {
    static std::unique_ptr<KrDevice> device;
    EXPECT_TRUE(KrGiveBackDevicesAtEnd().IsOK());
    device = OpenDevice();
    exit(0);
  };

  EXPECT_EXIT(exitWithStaticDevice(), testing::ExitedWithCode(0), Eq("given back\n"));
}

TEST_F(KrGiveBackDevicesAtEndDeathTest, NotCalled_Signal_EndsAsEver) {
  const auto raiseUnprepared = [] {
    const std::unique_ptr<KrDevice> device = OpenDevice();
    raise(SIGTERM);
    AwaitEnd();
  };

  EXPECT_EXIT(raiseUnprepared(), testing::KilledBySignal(SIGTERM), Eq(""));
}

TEST_F(KrGiveBackDevicesAtEndDeathTest, CalledTwice_Signal_GivesBackOnce) {
  const auto raisePreparedTwice = [] {
    EXPECT_TRUE(KrGiveBackDevicesAtEnd().IsOK());
    RaiseWithOpenDevice(SIGTERM);
  };

  EXPECT_EXIT(raisePreparedTwice(), testing::KilledBySignal(SIGTERM), Eq("given back\n"));
}

TEST_F(KrGiveBackDevicesAtEndDeathTest, SignalThatTheApplicationHandles_IsLeftAlone) {
  const auto handle = [] {
    signal(SIGTERM, [](int) { _exit(3); });
    RaiseWithOpenDevice(SIGTERM);
  };

  EXPECT_EXIT(handle(), testing::ExitedWithCode(3), Eq(""));
}

TEST_F(KrGiveBackDevicesAtEndDeathTest, SignalThatTheApplicationIgnores_IsLeftAlone) {
  const auto ignore = [] {
    signal(SIGHUP, SIG_IGN);
    EXPECT_TRUE(KrGiveBackDevicesAtEnd().IsOK());
    const std::unique_ptr<KrDevice> device = OpenDevice();
    raise(SIGHUP);
    Say("goes on\n");
    _exit(0);
  };

  EXPECT_EXIT(ignore(), testing::ExitedWithCode(0), Eq("goes on\n"));
}

TEST_F(KrGiveBackDevicesAtEndDeathTest, SecondCall_SignalThatHasItsDefaultActionAgain_IsTaken) {
  const auto giveUpHandling = [] {
    signal(SIGTERM, SIG_IGN);
    EXPECT_TRUE(KrGiveBackDevicesAtEnd().IsOK());
    signal(SIGTERM, SIG_DFL);
    RaiseWithOpenDevice(SIGTERM);
  };

  EXPECT_EXIT(giveUpHandling(), testing::KilledBySignal(SIGTERM), Eq("given back\n"));
}

TEST_F(KrGiveBackDevicesAtEndDeathTest, ForkedChild_EndsByExitOrSignal_LeavesTheParentsDevicesAlone) {
  const auto forkAndEnd = [] {
    EXPECT_TRUE(KrGiveBackDevicesAtEnd().IsOK());
    const std::unique_ptr<KrDevice> device = OpenDevice();
    const pid_t exiting = fork();
    if (exiting == 0)
      exit(5);
    const pid_t signalled = fork();
    if (signalled == 0) {
      raise(SIGTERM);
      AwaitEnd();
    }
    int exitStatus = 0;
    int signalStatus = 0;
    waitpid(exiting, &exitStatus, 0);
    waitpid(signalled, &signalStatus, 0);
    const bool asExpected = WIFEXITED(exitStatus) && WEXITSTATUS(exitStatus) == 5 && WIFSIGNALED(signalStatus) &&
                            WTERMSIG(signalStatus) == SIGTERM;
    Say(asExpected ? "children ended\n" : "children ended otherwise\n");
    exit(0);
  };

  // The leak sanitizer may add words of its own when a child exits that was forked from several threads.
  EXPECT_EXIT(forkAndEnd(), testing::ExitedWithCode(0),
              testing::AllOf(testing::HasSubstr("children ended\n"), testing::ResultOf(CountGivenBack, Eq(1u))));
}

TEST_F(KrGiveBackDevicesAtEndDeathTest, ForkedChild_ThatCallsItItself_TakesSignalsAndGivesBackItsOwnDevicesAlone) {
  const auto forkWithOwnDevice = [] {
    EXPECT_TRUE(KrGiveBackDevicesAtEnd().IsOK());
    const std::unique_ptr<KrDevice> device = OpenDevice();
    const pid_t child = fork();
    if (child == 0) {
      const bool wasDefault = HasDefaultAction(SIGTERM);
      const bool isReady = KrGiveBackDevicesAtEnd().IsOK();
      const std::unique_ptr<KrDevice> ownDevice = OpenDevice();
      exit(wasDefault && isReady && !HasDefaultAction(SIGTERM) ? 0 : 1);
    }
    int status = -1;
    waitpid(child, &status, 0);
    _exit(WIFEXITED(status) && WEXITSTATUS(status) == 0 ? 0 : 1);
  };

  EXPECT_EXIT(forkWithOwnDevice(), testing::ExitedWithCode(0), testing::ResultOf(CountGivenBack, Eq(1u)));
}
