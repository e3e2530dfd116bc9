#include "cancellation.h"

#include <chrono>
#include <condition_variable>
#include <mutex>

namespace krtool {

namespace {

// A signal handler can wake nobody, so the flag is looked at now and then.
constexpr std::chrono::milliseconds kInterval{50};

void Watch(const std::stop_token& aEnd, const krapps::StopSignal& aStop, KrGenParameterArray& aArray) {
  std::mutex mutex; // Guards nothing: the condition wants one.
  std::condition_variable_any woken;
  std::unique_lock lock(mutex);
  while (!woken.wait_for(lock, aEnd, kInterval, [&aEnd] { return aEnd.stop_requested(); })) {
    if (!aStop.IsRaised())
      continue;
    aArray.Cancel();
    return;
  }
}

} // namespace

Cancellation::Cancellation(KrGenParameterArray& aArray)
    : mWatch([this, &aArray](const std::stop_token& aEnd) { Watch(aEnd, mStop, aArray); }) {}

} // namespace krtool
