#include "opendevices.h"

#include "await.h"
#include "fakelink.h"
#include "krbase/krlogger.h"

#include <gtest/gtest.h>

#include <atomic>
#include <barrier>
#include <future>
#include <stdexcept>
#include <thread>

#include <sys/wait.h>
#include <unistd.h>

using krdevice::OpenDevices;

namespace {

const std::chrono::milliseconds kGenerousLimit = krtest::GetGenerousLimit();
constexpr std::chrono::milliseconds kShortLimit{1};

// A link whose control is given back only when the test allows it.
struct SlowLink : FakeLink {
  SlowLink() {
    onGiveBack = [this] {
      begun.set_value();
      allowed.get_future().wait();
      ended = true;
    };
  }
  std::promise<void> begun;
  std::promise<void> allowed;
  std::atomic<bool> ended = false;
};

struct CountingLink : FakeLink {
  CountingLink() {
    onGiveBack = [this] { ++givenBack; };
  }
  std::atomic<int> givenBack = 0;
};

} // namespace

TEST(OpenDevices, GiveBackAll_NoDevices_SucceedsAtOnce) {
  OpenDevices devices;

  EXPECT_TRUE(devices.GiveBackAll(kShortLimit));
}

TEST(OpenDevices, GiveBackAll_SeveralDevices_GivesThemBackAllAtOnce) {
  OpenDevices devices;
  std::barrier together(3); // Passed by nobody unless all three are under way at the same time.
  FakeLink links[3];
  for (FakeLink& link : links) {
    link.onGiveBack = [&] { together.arrive_and_wait(); };
    devices.Add(link);
  }

  EXPECT_TRUE(devices.GiveBackAll(kGenerousLimit));
}

TEST(OpenDevices, GiveBackAll_CalledAgain_GivesNothingBackTwice) {
  OpenDevices devices;
  CountingLink link;
  devices.Add(link);

  EXPECT_TRUE(devices.GiveBackAll(kGenerousLimit));
  EXPECT_TRUE(devices.GiveBackAll(kGenerousLimit));

  EXPECT_EQ(link.givenBack, 1);
}

TEST(OpenDevices, GiveBackAll_RemovedDevice_IsNotTouched) {
  OpenDevices devices;
  CountingLink link;
  const OpenDevices::Place place = devices.Add(link);
  EXPECT_TRUE(devices.BeginClosing(place));
  devices.Remove(place);

  EXPECT_TRUE(devices.GiveBackAll(kGenerousLimit));

  EXPECT_EQ(link.givenBack, 0);
}

TEST(OpenDevices, GiveBackAll_DeviceThatHangs_EndsWithTheLimitAndTheOthersAreGivenBack) {
  OpenDevices devices;
  SlowLink slow;
  CountingLink quick;
  devices.Add(slow);
  devices.Add(quick);

  EXPECT_FALSE(devices.GiveBackAll(kShortLimit));

  EXPECT_FALSE(slow.ended);
  slow.allowed.set_value();
  EXPECT_TRUE(devices.GiveBackAll(kGenerousLimit));
  EXPECT_EQ(quick.givenBack, 1);
}

TEST(OpenDevices, GiveBackAll_LinkThrows_IsLoggedAndTheOthersAreGivenBack) {
  const KrLogCapture log;
  OpenDevices devices;
  FakeLink broken;
  broken.onGiveBack = [] { throw std::runtime_error("broken"); };
  CountingLink whole;
  devices.Add(broken);
  devices.Add(whole);

  EXPECT_TRUE(devices.GiveBackAll(kGenerousLimit));

  EXPECT_EQ(whole.givenBack, 1);
  EXPECT_TRUE(log.Contains(KrLogLevel::Warning, "Giving back control of a device was ended by an exception: broken"));
}

TEST(OpenDevices, GiveBackAll_DeviceBeingClosed_IsWaitedForAndNotTouched) {
  OpenDevices devices;
  CountingLink link;
  const OpenDevices::Place place = devices.Add(link);
  EXPECT_TRUE(devices.BeginClosing(place));
  EXPECT_FALSE(devices.GiveBackAll(kShortLimit)) << "it is not closed yet";

  std::future<bool> all = std::async(std::launch::async, [&] { return devices.GiveBackAll(kGenerousLimit); });
  devices.Remove(place);

  EXPECT_TRUE(all.get());
  EXPECT_EQ(link.givenBack, 0);
}

TEST(OpenDevices, GiveBackAll_DeviceBeingOpened_IsWaitedForAndGivenBack) {
  OpenDevices devices;
  OpenDevices::Place opening = 0;
  ASSERT_TRUE(devices.BeginOpening(opening));
  EXPECT_FALSE(devices.GiveBackAll(kShortLimit)) << "it is not open yet";

  std::future<bool> all = std::async(std::launch::async, [&] { return devices.GiveBackAll(kGenerousLimit); });
  CountingLink link;
  devices.Add(link);
  devices.Remove(opening);

  EXPECT_TRUE(all.get());
  EXPECT_EQ(link.givenBack, 1);
}

TEST(OpenDevices, BeginOpening_OnceAllAreGivenBack_IsRefused) {
  OpenDevices devices;
  OpenDevices::Place place = 0;
  EXPECT_TRUE(devices.GiveBackAll(kGenerousLimit));

  EXPECT_FALSE(devices.BeginOpening(place));
}

TEST(OpenDevices, BeginClosing_WhileItIsGivenBack_WaitsForThat) {
  OpenDevices devices;
  SlowLink link;
  const OpenDevices::Place place = devices.Add(link);
  std::future<bool> all = std::async(std::launch::async, [&] { return devices.GiveBackAll(kGenerousLimit); });
  link.begun.get_future().wait();

  std::future<bool> ended = std::async(std::launch::async, [&] {
    EXPECT_TRUE(devices.BeginClosing(place));
    return link.ended.load();
  });
  link.allowed.set_value();

  EXPECT_TRUE(ended.get()) << "control was still being given back";
  devices.Remove(place);
  EXPECT_TRUE(all.get());
}

TEST(OpenDevices, BeginClosing_GiveBackThatHangsBeyondTheLimit_SaysThatTheLinkIsInUse) {
  OpenDevices devices;
  SlowLink link;
  const OpenDevices::Place place = devices.Add(link);
  EXPECT_FALSE(devices.GiveBackAll(kShortLimit));

  EXPECT_FALSE(devices.BeginClosing(place));
  devices.Remove(place);

  link.allowed.set_value();
  EXPECT_TRUE(devices.GiveBackAll(kGenerousLimit));
}

TEST(OpenDevices, Get_ForkWhileAnotherThreadUsesTheList_LeavesItUsableInTheChild) {
  constexpr int kForks = 200;
  // A child that waits for a lock without an owner ends by SIGALRM.
  const unsigned kChildLimitS = krtest::GetGenerousMs() / 1000;
  OpenDevices& devices = OpenDevices::Get();
  FakeLink link;
  std::jthread user([&](const std::stop_token& aStop) {
    while (!aStop.stop_requested()) {
      const OpenDevices::Place place = devices.Add(link);
      EXPECT_TRUE(devices.BeginClosing(place));
      devices.Remove(place);
    }
  });

  int status = 0;
  for (int fork = 0; fork < kForks && status == 0; ++fork) {
    const pid_t child = ::fork();
    if (child == 0) {
      alarm(kChildLimitS);
      OpenDevices::Place place = 0;
      _exit(devices.BeginOpening(place) ? 0 : 1);
    }
    ASSERT_EQ(waitpid(child, &status, 0), child);
  }

  EXPECT_EQ(status, 0) << "a child could not use the list";
}

TEST(OpenDevices, GiveBackAll_InAForkedChild_LeavesTheParentsDevicesAlone) {
  OpenDevices devices;
  CountingLink link;
  devices.Add(link);

  const pid_t child = fork();
  if (child == 0)
    _exit(devices.GiveBackAll(kShortLimit) && link.givenBack == 0 ? 0 : 1);
  int status = -1;
  waitpid(child, &status, 0);

  EXPECT_TRUE(WIFEXITED(status));
  EXPECT_EQ(WEXITSTATUS(status), 0);
}
