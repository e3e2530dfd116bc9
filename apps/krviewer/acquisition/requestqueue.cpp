#include "acquisition/requestqueue.h"

#include <utility>

namespace krviewer {

void RequestQueue::Post(AcquisitionRequest aRequest) {
  const std::lock_guard lock(mMutex);
  if (mClosed)
    mEnded.push_back({std::move(aRequest.work.then), *mClosed});
  else
    mWaiting.push_back(std::move(aRequest));
}

std::optional<AcquisitionRequest> RequestQueue::TakeNext() {
  const std::lock_guard lock(mMutex);
  if (mWaiting.empty())
    return std::nullopt;
  std::optional<AcquisitionRequest> next(std::move(mWaiting.front()));
  mWaiting.pop_front();
  return next;
}

bool RequestQueue::IsEmpty() const {
  const std::lock_guard lock(mMutex);
  return mWaiting.empty();
}

void RequestQueue::End(const AcquisitionRequest& aRequest, const KrResult& aResult) {
  const std::lock_guard lock(mMutex);
  mEnded.push_back({aRequest.work.then, aResult});
}

void RequestQueue::Close(const KrResult& aResult) {
  const std::lock_guard lock(mMutex);
  mClosed = aResult;
  for (AcquisitionRequest& request : mWaiting)
    mEnded.push_back({std::move(request.work.then), aResult});
  mWaiting.clear();
}

std::optional<RequestQueue::Ended> RequestQueue::TakeEnded() {
  const std::lock_guard lock(mMutex);
  if (mEnded.empty())
    return std::nullopt;
  std::optional<Ended> first(std::move(mEnded.front()));
  mEnded.pop_front();
  return first;
}

void RequestQueue::DeliverEnds() {
  while (const std::optional<Ended> ended = TakeEnded())
    if (ended->then)
      ended->then(ended->result);
}

} // namespace krviewer
