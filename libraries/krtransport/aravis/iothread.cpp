#include "aravis/iothread.h"

#include <chrono>
#include <exception>
#include <utility>

namespace krtransport {
namespace {

KrResult TellCancelled() {
  return {KrResult::Code::Aborted, "The access to the device was cancelled."};
}

// A job's exception is its caller's failure, not the process' end.
KrResult RunJob(const IoThread::Job& aJob, const std::atomic<bool>& aIsAbandoned) {
  try {
    return aJob(aIsAbandoned);
  } catch (const std::exception& exception) {
    return {KrResult::Code::SystemError, std::string("A call of the device failed: ") + exception.what()};
  } catch (...) {
    return {KrResult::Code::SystemError, "A call of the device failed for an unknown reason."};
  }
}

} // namespace

IoThread::IoThread(std::string aDeviceName) : mDeviceName(std::move(aDeviceName)), mThread([this] { Work(); }) {}

IoThread::~IoThread() {
  {
    const std::lock_guard lock(mMutex);
    mIsEnding = true;
  }
  mWork.notify_all();
  mThread.join();
}

KrResult IoThread::Run(Job aJob, std::uint32_t aTimeoutMs, const std::stop_token& aCancel) {
  std::unique_lock lock(mMutex);
  if (mIsInterrupted)
    return mInterruption;
  if (aCancel.stop_requested())
    return TellCancelled();
  const auto entry = Enqueue(std::move(aJob));
  const auto until = std::chrono::steady_clock::now() + std::chrono::milliseconds(aTimeoutMs);
  mDone.wait_until(lock, aCancel, until, [&] { return entry->isDone || mIsInterrupted; });
  if (entry->isDone)
    return NameSilence(entry->result);
  entry->isAbandoned = true;
  if (mIsInterrupted)
    return mInterruption;
  if (aCancel.stop_requested())
    return TellCancelled();
  return TellTimeout(aTimeoutMs);
}

KrResult IoThread::RunRegardless(Job aJob, std::uint32_t aTimeoutMs) {
  std::unique_lock lock(mMutex);
  const auto entry = Enqueue(std::move(aJob));
  const auto until = std::chrono::steady_clock::now() + std::chrono::milliseconds(aTimeoutMs);
  if (mDone.wait_until(lock, until, [&] { return entry->isDone; }))
    return NameSilence(entry->result);
  entry->isAbandoned = true;
  return TellTimeout(aTimeoutMs);
}

KrResult IoThread::RunToEnd(Job aJob) {
  std::unique_lock lock(mMutex);
  const auto entry = Enqueue(std::move(aJob));
  mDone.wait(lock, [&] { return entry->isDone; });
  return entry->result;
}

void IoThread::Post(Job aJob) {
  const std::lock_guard lock(mMutex);
  Enqueue(std::move(aJob));
}

void IoThread::Interrupt(const KrResult& aReason) {
  {
    const std::lock_guard lock(mMutex);
    if (mIsInterrupted)
      return;
    mIsInterrupted = true;
    mInterruption = aReason;
  }
  mDone.notify_all();
}

std::shared_ptr<IoThread::Entry> IoThread::Enqueue(Job aJob) {
  auto entry = std::make_shared<Entry>();
  entry->job = std::move(aJob);
  mQueue.push_back(entry);
  mWork.notify_one();
  return entry;
}

// What a job says of silence is what it was about.
KrResult IoThread::NameSilence(const KrResult& aResult) const {
  if (aResult != KrResult::Code::TimeLimitExceeded)
    return aResult;
  return {aResult.GetCode(), mDeviceName + " did not answer. " + aResult.GetDescription()};
}

KrResult IoThread::TellTimeout(std::uint32_t aTimeoutMs) const {
  return {KrResult::Code::TimeLimitExceeded, mDeviceName + " did not answer within " + std::to_string(aTimeoutMs) +
                                                 " milliseconds; check its cable and its power."};
}

void IoThread::Work() {
  std::unique_lock lock(mMutex);
  while (true) {
    mWork.wait(lock, [this] { return mIsEnding || !mQueue.empty(); });
    if (mQueue.empty())
      return;
    const auto entry = std::move(mQueue.front());
    mQueue.pop_front();
    lock.unlock();
    KrResult result{KrResult::Code::Aborted, "The call was given up before it began."};
    if (!entry->isAbandoned)
      result = RunJob(entry->job, entry->isAbandoned);
    // What the job holds is released here, on the thread that used it.
    entry->job = nullptr;
    lock.lock();
    entry->result = std::move(result);
    entry->isDone = true;
    mDone.notify_all();
  }
}

} // namespace krtransport
