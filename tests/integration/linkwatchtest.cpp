// The watch of a GigE Vision link, over a device that answers as the test tells it.

#include "await.h"
#include "gvcpresponder.h"

#include "gigevision/linkwatch.h"

#include <gtest/gtest.h>

#include <condition_variable>
#include <future>
#include <mutex>

namespace {

using namespace krtransport;

constexpr std::uint32_t kLoopback = 0x7F000001;

/// Counts questions, and lets a test wait for more of them.
class QuestionCount {
public:
  void Add() {
    const std::lock_guard lock(mMutex);
    ++mCount;
    mChanged.notify_all();
  }
  bool WaitForMore(int aQuestions) {
    std::unique_lock lock(mMutex);
    return mChanged.wait_for(lock, krtest::GetGenerousLimit(),
                             [this, end = mCount + aQuestions] { return mCount >= end; });
  }

private:
  std::mutex mMutex; // Guards mCount.
  std::condition_variable mChanged;
  int mCount = 0;
};

/// Does not return from the word of loss until it is let go.
class BlockingSink final : public krsystem::IDeviceLinkSink {
public:
  void OnLinkLost(const KrResult&) override {
    mIsTold.set_value();
    mMayGoOn.get_future().wait();
  }
  void OnLinkBack() override { mIsBack.set_value(); }

  std::promise<void> mIsTold;
  std::promise<void> mMayGoOn;
  std::promise<void> mIsBack;
};

} // namespace

TEST(LinkWatch, SinkThatBlocksInTheWordOfLoss_DoesNotKeepItFromLookingForTheReturn) {
  QuestionCount questions;
  // Nobody controls it, as if it had been restarted.
  const GvcpResponder responder([&](auto aCommand) {
    questions.Add();
    return Datagrams{MakeReadAcknowledge(aCommand, 0)};
  });
  GvcpClient client;
  ASSERT_TRUE(GvcpClient::Connect(kLoopback, std::nullopt, client).IsOK());
  BlockingSink sink;
  LinkTarget target;
  target.deviceAddress = kLoopback;
  LinkWatch watch(
      target, std::move(client), [] { return true; }, [](const KrResult&) {});

  watch.SetSink(&sink);
  EXPECT_EQ(sink.mIsTold.get_future().wait_for(krtest::GetGenerousLimit()), std::future_status::ready);

  EXPECT_TRUE(questions.WaitForMore(2)) << "it is asked while the sink blocks";
  sink.mMayGoOn.set_value();
  EXPECT_EQ(sink.mIsBack.get_future().wait_for(krtest::GetGenerousLimit()), std::future_status::ready);
  watch.SetSink(nullptr);
}
