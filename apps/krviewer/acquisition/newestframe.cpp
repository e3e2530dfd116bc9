#include "acquisition/newestframe.h"

#include "recording/recordedframe.h"

#include <atomic>
#include <new>
#include <utility>

namespace krviewer {

std::shared_ptr<const KrBuffer> NewestFrame::Get() const {
  const std::lock_guard lock(mMutex);
  return mNewest;
}

// A spare frame is handed out to nobody any more, so that one that is held by this object alone stays so.
std::shared_ptr<KrBuffer> NewestFrame::FindRoom(std::size_t aBytes) {
  if (mSpare && mSpare.use_count() == 1 && mSpare->GetSize() == aBytes) {
    std::atomic_thread_fence(std::memory_order_acquire); // After all that its last reader did.
    return std::move(mSpare);
  }
  mSpare.reset();
  std::shared_ptr<KrBuffer> room(new (std::nothrow) KrBuffer);
  return room && room->Alloc(aBytes).IsOK() ? room : nullptr;
}

void NewestFrame::OnFrame(const KrBuffer& aFrame, std::uint64_t) {
  const std::size_t bytes = GetRecordedSize(aFrame);
  if (aFrame.GetStatus() != KrBufferStatus::Complete || bytes == 0)
    return;
  std::shared_ptr<KrBuffer> room = FindRoom(bytes);
  if (!room || !CopyFrame(aFrame, *room).IsOK())
    return; // Too little memory leaves the frame before.
  const std::lock_guard lock(mMutex);
  mSpare = std::exchange(mNewest, std::move(room));
}

} // namespace krviewer
