#include "krsystem/linkevents.h"

#include "await.h"
#include "gate.h"
#include "threadstate.h"

#include <gmock/gmock.h>

#include <condition_variable>
#include <mutex>
#include <string>
#include <vector>

using krsystem::LinkEvents;

namespace {

/// Writes down what it hears and lets a test wait for it.
class RecordingSink final : public krsystem::IDeviceLinkSink {
public:
  void OnLinkLost(const KrResult& aReason) override { Record("lost: " + aReason.GetDescription().ToUtf8()); }
  void OnLinkBack() override { Record("back"); }

  std::vector<std::string> WaitForLast(const std::string& aLast) {
    std::unique_lock lock(mMutex);
    mChanged.wait_for(lock, krtest::GetGenerousLimit(), [&] { return !mHeard.empty() && mHeard.back() == aLast; });
    return mHeard;
  }

private:
  void Record(const std::string& aEvent) {
    const std::lock_guard lock(mMutex);
    mHeard.push_back(aEvent);
    mChanged.notify_all();
  }

  std::mutex mMutex; // Guards mHeard.
  std::condition_variable mChanged;
  std::vector<std::string> mHeard;
};

/// Takes itself away in the word of loss, and does not return from it until it is let go.
struct LeavingSink final : public krsystem::IDeviceLinkSink {
  void OnLinkLost(const KrResult&) override {
    events->SetSink(nullptr);
    gate.Wait({});
  }
  void OnLinkBack() override {}

  LinkEvents* events = nullptr;
  Gate gate;
};

KrResult MakeLoss(const char* aReason) {
  return {KrResult::Code::ConnectionLost, aReason};
}

} // namespace

TEST(LinkEvents, EventsWithoutASink_OfOneKindInARow_AreHeardOnce) {
  LinkEvents events;
  RecordingSink sink;
  events.ReportLost(MakeLoss("first"));
  for (int i = 0; i < 1000; ++i)
    events.ReportBack();
  events.ReportLost(MakeLoss("second"));
  events.ReportLost(MakeLoss("third"));

  events.SetSink(&sink);

  EXPECT_THAT(sink.WaitForLast("lost: third"), testing::ElementsAre("lost: first", "back", "lost: third"));
  events.SetSink(nullptr);
}

TEST(LinkEvents, EventsForgotten_AreNotHeard) {
  LinkEvents events;
  RecordingSink sink;
  events.ReportLost(MakeLoss("forgotten"));
  events.ReportBack();

  events.Forget();

  events.ReportLost(MakeLoss("later"));
  events.SetSink(&sink);
  EXPECT_THAT(sink.WaitForLast("lost: later"), testing::ElementsAre("lost: later"));
  events.SetSink(nullptr);
}

TEST(LinkEvents, SinkThatTookItselfAway_IsWaitedForWhileItsCallRuns) {
  LeavingSink sink;
  LinkEvents events;
  sink.events = &events;
  events.SetSink(&sink);
  events.ReportLost(MakeLoss("lost"));
  EXPECT_TRUE(sink.gate.AwaitReached());

  krtest::CallBeside taking([&] { events.SetSink(nullptr); });

  EXPECT_TRUE(taking.Waits());
  sink.gate.Open();
  taking.Join();
}
