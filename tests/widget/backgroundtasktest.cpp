// Work beside a window: when it is continued, and what becomes of it when nobody wants its end any more.

#include "platform/backgroundtask.h"

#include "await.h"
#include "krbase/krlogger.h"
#include "testwnd.h"

#include <gmock/gmock.h>

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <latch>
#include <stdexcept>

namespace krgui {

namespace {

using WhenCancelled = BackgroundTask::WhenCancelled;

void AwaitStop(const std::stop_token& aStop) {
  EXPECT_TRUE(krtest::Await([&] { return aStop.stop_requested(); }));
}

TEST(BackgroundTask, Work_IsDoneElsewhereAndContinuedHere) {
  BackgroundTask task;
  std::thread::id workThread;
  std::thread::id thenThread;

  task.Start([&](const std::stop_token&) { workThread = std::this_thread::get_id(); },
             [&] { thenThread = std::this_thread::get_id(); });

  EXPECT_TRUE(task.IsRunning());
  ASSERT_TRUE(WaitFor([&] { return thenThread != std::thread::id(); }));
  EXPECT_EQ(thenThread, std::this_thread::get_id());
  EXPECT_NE(workThread, std::thread::id());
  EXPECT_NE(workThread, thenThread);
  EXPECT_FALSE(task.IsRunning());
}

class BackgroundTaskCancelled : public testing::TestWithParam<WhenCancelled> {};

TEST_P(BackgroundTaskCancelled, WorkThatHasPosted_IsNotContinued) {
  BackgroundTask task(GetParam());
  std::latch hasWorked{1};
  bool isContinued = false;
  task.Start([&](const std::stop_token&) { hasWorked.count_down(); }, [&] { isContinued = true; });
  hasWorked.wait();

  task.Cancel();
  BackgroundTask::AwaitAbandoned();
  QCoreApplication::processEvents();

  EXPECT_FALSE(isContinued);
  EXPECT_FALSE(task.IsRunning());
}

TEST_P(BackgroundTaskCancelled, WorkThatRuns_IsToldToStopAndNotContinued) {
  BackgroundTask task(GetParam());
  std::atomic<bool> hasEnded = false;
  bool isContinued = false;
  task.Start(
      [&](const std::stop_token& aStop) {
        AwaitStop(aStop);
        hasEnded = true;
      },
      [&] { isContinued = true; });

  task.Cancel();
  BackgroundTask::AwaitAbandoned();
  QCoreApplication::processEvents();

  EXPECT_TRUE(hasEnded);
  EXPECT_FALSE(isContinued);
}

TEST_P(BackgroundTaskCancelled, AnotherStart_DropsTheFirstAndContinuesTheSecond) {
  BackgroundTask task(GetParam());
  std::vector<int> continued;
  task.Start(AwaitStop, [&] { continued.push_back(1); });

  task.Start([](const std::stop_token&) {}, [&] { continued.push_back(2); });

  EXPECT_TRUE(WaitFor([&] { return !continued.empty(); }));
  BackgroundTask::AwaitAbandoned();
  QCoreApplication::processEvents();
  EXPECT_THAT(continued, testing::ElementsAre(2));
}

TEST_P(BackgroundTaskCancelled, OwnerThatEndsInTheContinuation_IsNotTouchedAgain) {
  auto task = std::make_unique<BackgroundTask>(GetParam());
  const auto held = std::make_shared<int>(7);
  int seen = 0;
  task->Start([](const std::stop_token&) {},
              [&task, &seen, held] {
                task.reset();
                seen = *held;
              });

  EXPECT_TRUE(WaitFor([&] { return seen == 7; }));

  EXPECT_EQ(task, nullptr);
}

TEST_P(BackgroundTaskCancelled, ContinuationThatStartsAnother_IsFollowedByIt) {
  BackgroundTask task(GetParam());
  bool isDone = false;
  const auto nothing = [](const std::stop_token&) {};
  task.Start(nothing, [&] { task.Start(nothing, [&] { isDone = true; }); });

  EXPECT_TRUE(WaitFor([&] { return isDone; }));
}

INSTANTIATE_TEST_SUITE_P(Modes, BackgroundTaskCancelled, testing::Values(WhenCancelled::Wait, WhenCancelled::Abandon),
                         [](const auto& aInfo) { return aInfo.param == WhenCancelled::Wait ? "Wait" : "Abandon"; });

TEST(BackgroundTask, AbandonedWork_IsNotWaitedFor) {
  const auto mayEnd = std::make_shared<std::latch>(1);
  const auto hasEnded = std::make_shared<std::atomic<bool>>(false);
  {
    BackgroundTask task(WhenCancelled::Abandon);
    task.Start(
        [mayEnd, hasEnded](const std::stop_token&) {
          mayEnd->wait();
          *hasEnded = true;
        },
        [] {});
  }
  EXPECT_FALSE(*hasEnded);

  mayEnd->count_down();
  BackgroundTask::AwaitAbandoned();

  EXPECT_TRUE(*hasEnded);
}

TEST(BackgroundTask, WorkThatThrows_IsLoggedAndContinued) {
  const struct {
    const char* name;
    std::function<void(const std::stop_token&)> work;
    const char* text;
  } rows[] = {
      {"exception", [](const std::stop_token&) { throw std::runtime_error("no more sockets"); }, "no more sockets"},
      {"anything", [](const std::stop_token&) { throw 7; }, "unknown type"}};
  for (const auto& row : rows) {
    const KrLogCapture log;
    BackgroundTask task;
    bool isContinued = false;

    task.Start(row.work, [&] { isContinued = true; });

    EXPECT_TRUE(WaitFor([&] { return isContinued; })) << row.name;
    ASSERT_EQ(log.GetRecords().size(), 1U) << row.name;
    EXPECT_EQ(log.GetRecords().back().level, KrLogLevel::Error) << row.name;
    EXPECT_THAT(log.GetRecords().back().text.ToUtf8(), testing::HasSubstr(row.text)) << row.name;
  }
}

std::latch& GetProcessEnd() {
  static std::latch begins{1};
  return begins;
}

std::atomic<bool>& HasWorkEnded() {
  static std::atomic<bool> hasEnded = false;
  return hasEnded;
}

/// A process of its own: what it registers runs in the reverse order at its end.
[[noreturn]] void EndWithAbandonedWork() {
  (void)GetProcessEnd();
  (void)HasWorkEnded();
  (void)std::atexit([] { std::fputs(HasWorkEnded() ? "waited for the work" : "left the work behind", stderr); });
  BackgroundTask task(WhenCancelled::Abandon);
  task.Start(
      [](const std::stop_token&) {
        GetProcessEnd().wait();
        HasWorkEnded() = true;
      },
      [] {});
  task.Cancel();
  (void)std::atexit([] { GetProcessEnd().count_down(); });
  std::exit(0); // NOLINT(concurrency-mt-unsafe): it is the subject.
}

TEST(BackgroundTaskDeathTest, ProcessEnd_WaitsForAbandonedWork) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");

  EXPECT_EXIT(EndWithAbandonedWork(), testing::ExitedWithCode(0), "waited for the work");
}

} // namespace

} // namespace krgui
