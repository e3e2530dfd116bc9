#include "acquisition/newestframe.h"

#include "recording/recordedframe.h"

#include <new>
#include <utility>

namespace krviewer {

namespace {

std::shared_ptr<const KrBuffer> MakeCopy(const KrBuffer& aFrame) {
  const std::shared_ptr<KrBuffer> copy(new (std::nothrow) KrBuffer);
  const bool isMade = copy && copy->Alloc(GetRecordedSize(aFrame)).IsOK() && CopyFrame(aFrame, *copy).IsOK();
  return isMade ? copy : nullptr;
}

} // namespace

bool NewestFrame::HasFrame() const {
  const std::lock_guard lock(mMutex);
  return mNewest != nullptr;
}

// The copy is made without the lock, as the frame is held meanwhile: frames come on.
std::shared_ptr<const KrBuffer> NewestFrame::Get() const {
  std::shared_ptr<const KrBuffer> frame;
  {
    const std::lock_guard lock(mMutex);
    if (!mNewest || mIsCopy)
      return mNewest;
    frame = mNewest;
  }
  return MakeCopy(*frame);
}

void NewestFrame::Take(const std::shared_ptr<const KrBuffer>& aFrame) {
  if (aFrame->GetStatus() == KrBufferStatus::Complete && GetRecordedSize(*aFrame) > 0)
    Exchange(aFrame, false);
}

void NewestFrame::Detach() {
  Exchange(Get(), true);
}

// What goes back to its stream does so without the lock.
void NewestFrame::Exchange(std::shared_ptr<const KrBuffer> aFrame, bool aIsCopy) {
  const std::lock_guard lock(mMutex);
  mNewest.swap(aFrame);
  mIsCopy = aIsCopy;
}

} // namespace krviewer
