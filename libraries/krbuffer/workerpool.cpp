#include "workerpool.h"

namespace krbuffer {

WorkerPool::WorkerPool(int aThreadCount) {
  for (int index = 0; index < aThreadCount; ++index)
    mThreads.emplace_back([this](const std::stop_token& aStop) { ServeJobs(aStop); });
}

void WorkerPool::Run(std::uint32_t aPartCount, const std::function<void(std::uint32_t aPart)>& aWork) {
  Job job{aWork, aPartCount};
  std::unique_lock lock(mMutex);
  if (aPartCount > 0)
    mJobs.push_back(&job);
  mJobsWaiting.notify_all();
  while (job.nextPart < job.partCount)
    DoNextPart(job, lock);
  mPartDone.wait(lock, [&job] { return job.partsDone == job.partCount; });
}

void WorkerPool::ServeJobs(const std::stop_token& aStop) {
  std::unique_lock lock(mMutex);
  while (mJobsWaiting.wait(lock, aStop, [this] { return !mJobs.empty(); }))
    DoNextPart(*mJobs.front(), lock);
}

void WorkerPool::DoNextPart(Job& aJob, std::unique_lock<std::mutex>& aLock) {
  const std::uint32_t part = aJob.nextPart++;
  if (aJob.nextPart == aJob.partCount)
    std::erase(mJobs, &aJob);
  aLock.unlock();
  aJob.work(part);
  aLock.lock();
  // After this the caller of Run may take the job away as soon as the lock is free.
  if (++aJob.partsDone == aJob.partCount)
    mPartDone.notify_all();
}

} // namespace krbuffer
