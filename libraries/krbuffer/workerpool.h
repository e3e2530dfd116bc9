#pragma once
// A few threads that stand by to share a piece of work with the thread that has it.
// What the work is and how it is cut into parts is left to the callers.

#include <condition_variable>
#include <cstdint>
#include <deque>
#include <functional>
#include <mutex>
#include <stop_token>
#include <thread>
#include <vector>

namespace krbuffer {

/// Thread: Run may be called from several threads at once; each waits for its own parts alone.
/// Ownership: owns its threads; its destructor joins them and must not run beside a Run.
class WorkerPool {
public:
  /// Starts the threads; std::system_error when the system refuses one, those that were started are joined.
  explicit WorkerPool(int aThreadCount);

  /// Does the parts 0 to aPartCount - 1, each once, on the pool's threads and the caller's, and returns when all are
  /// done. The work must not throw.
  void Run(std::uint32_t aPartCount, const std::function<void(std::uint32_t aPart)>& aWork);

private:
  struct Job {
    const std::function<void(std::uint32_t aPart)>& work;
    std::uint32_t partCount;
    std::uint32_t nextPart = 0;
    std::uint32_t partsDone = 0;
  };

  void ServeJobs(const std::stop_token& aStop);
  /// Takes the job's next part and does it without the lock.
  void DoNextPart(Job& aJob, std::unique_lock<std::mutex>& aLock);

  std::mutex mMutex;                        // Guards mJobs and the counters of every job.
  std::deque<Job*> mJobs;                   // Those that still have parts to take.
  std::condition_variable_any mJobsWaiting; // Signalled when a job is added.
  std::condition_variable mPartDone;        // Signalled when the last part of a job is done.
  std::vector<std::jthread> mThreads;       // Last, so that the threads end before what they use.
};

} // namespace krbuffer
