#pragma once
// One thread that makes a device's blocking calls, one after the other. Callers wait with a limit of their own and may
// leave; what the calls do is left to the jobs.

#include "krbase/krresult.h"

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <stop_token>
#include <string>
#include <thread>

namespace krtransport {

/// Runs jobs.
///
/// Thread: any, but for destruction, which waits for the job that runs and drops abandoned ones.
/// Ownership: a job owns, or shares, everything that it touches: its caller may be gone when it runs.
class IoThread {
public:
  /// A job; it may look whether its caller has left, and end early then. An exception of it is SystemError to
  /// its caller.
  using Job = std::function<KrResult(const std::atomic<bool>& aIsAbandoned)>;

  /// The device's name begins the texts of its silence: "The device at 192.168.1.20".
  explicit IoThread(std::string aDeviceName = "The device");
  ~IoThread();
  IoThread(const IoThread&) = delete;
  IoThread& operator=(const IoThread&) = delete;

  const std::string& GetDeviceName() const { return mDeviceName; }

  /// Runs a job and waits up to aTimeoutMs milliseconds for it. TimeLimitExceeded after that: the job is abandoned,
  /// which means that it is skipped if it has not begun. A job's own TimeLimitExceeded gets the device's name. Aborted,
  /// at once and in the same way, when aCancel is stopped. The reason of Interrupt, at once, after that was called.
  KrResult Run(Job aJob, std::uint32_t aTimeoutMs, const std::stop_token& aCancel = {});
  /// As Run, interrupted or not: for what has to be done after an interruption.
  KrResult RunRegardless(Job aJob, std::uint32_t aTimeoutMs);
  /// Runs a job and waits for its end, interrupted or not.
  KrResult RunToEnd(Job aJob);
  /// Runs a job some time, without waiting; what it returns is dropped.
  void Post(Job aJob);
  /// Ends all waits of Run, now and from now on, with a reason.
  void Interrupt(const KrResult& aReason);

private:
  struct Entry {
    Job job;
    std::atomic<bool> isAbandoned{false};
    bool isDone = false;
    KrResult result;
  };

  std::shared_ptr<Entry> Enqueue(Job aJob);
  KrResult NameSilence(const KrResult& aResult) const;
  KrResult TellTimeout(std::uint32_t aTimeoutMs) const;
  void Work();

  const std::string mDeviceName;

  // Guards all members below but the thread, and isDone and result of every entry.
  std::mutex mMutex;
  std::condition_variable mWork;
  std::condition_variable_any mDone;
  std::deque<std::shared_ptr<Entry>> mQueue;
  bool mIsInterrupted = false;
  bool mIsEnding = false;
  KrResult mInterruption;
  std::thread mThread;
};

} // namespace krtransport
