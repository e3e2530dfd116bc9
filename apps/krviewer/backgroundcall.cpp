#include "backgroundcall.h"

#include <chrono>
#include <utility>

namespace krviewer {

namespace {

/// A hurry that comes just before the work waits ends nothing.
constexpr std::chrono::milliseconds kHurryPeriod{10};

} // namespace

void BackgroundCall::Start(Work aWork, std::function<void()> aHurry, std::function<void()> aThen) {
  mHurry = std::move(aHurry);
  mThen = std::move(aThen);
  std::promise<void> end;
  mEnd = end.get_future();
  mThread = std::jthread([work = std::move(aWork), end = std::move(end)](const std::stop_token& aStop) mutable {
    work(aStop);
    end.set_value();
  });
}

void BackgroundCall::Follow() {
  if (!IsRunning() || mEnd.wait_for(std::chrono::milliseconds::zero()) != std::future_status::ready)
    return;
  mThread.join();
  // It may begin the next one.
  std::exchange(mThen, nullptr)();
}

void BackgroundCall::Await() const {
  if (IsRunning())
    mEnd.wait();
}

bool BackgroundCall::AwaitFor(std::chrono::milliseconds aLimit) const {
  return !IsRunning() || mEnd.wait_for(aLimit) == std::future_status::ready;
}

void BackgroundCall::End() {
  if (!IsRunning())
    return;
  mThread.request_stop();
  do
    mHurry();
  while (mEnd.wait_for(kHurryPeriod) != std::future_status::ready);
  mThread.join();
}

void BackgroundCall::Leave() {
  if (IsRunning())
    mThread.detach();
}

} // namespace krviewer
