#include "recording/recording.h"

#include <chrono>
#include <utility>

namespace krviewer {

namespace {

/// A time limit is looked at this often while no frame comes.
constexpr std::chrono::milliseconds kLookInterval{100};
constexpr std::uint64_t kNsPerSecond = 1'000'000'000;
constexpr std::uint64_t kNsPerMs = 1'000'000;

/// Whether the frame is at fault, and the disk takes others.
bool IsOfFrame(const KrResult& aResult) {
  return aResult == KrResult::Code::NotSupported || aResult == KrResult::Code::BadData;
}

} // namespace

Recording::Recording(const RecordingOptions& aOptions, Clock aClock)
    : mClock(std::move(aClock)), mOptions(aOptions), mBeginNs(mClock()) {
  mQueue.Reset(mOptions.mostQueuedBytes, mOptions.mostQueuedFrames);
  mProgress.state = RecordingState::Recording;
  mProgress.keepsDiskFree = mOptions.freeDiskBytes > 0;
}

bool Recording::IsBusy() const {
  const std::lock_guard lock(mMutex);
  return !IsOver();
}

void Recording::Stop() {
  const std::lock_guard lock(mMutex);
  EndTaking(RecordingEnd::Stopped);
}

void Recording::GiveUp() {
  const std::lock_guard lock(mMutex);
  EndTaking(RecordingEnd::Stopped);
  mProgress.counts.abandoned += mQueue.Clear();
  mChanged.notify_all();
}

void Recording::Leave() {
  std::unique_lock lock(mMutex);
  if (IsOver())
    return;
  EndTaking(RecordingEnd::Failed);
  mChanged.wait(lock, [this] { return !mIsCopying; });
  mProgress.counts.abandoned += mQueue.Clear() + (mIsWriting ? 1 : 0);
  Fail({KrResult::Code::TimeLimitExceeded,
        "The disk with \"" + mOptions.folder + "\" did not answer, and nobody waited for it any longer."});
  mProgress.state = RecordingState::Ended;
}

void Recording::EndTaking(RecordingEnd aEnd) {
  if (mProgress.state != RecordingState::Recording)
    return;
  mProgress.state = RecordingState::Finishing;
  mProgress.end = aEnd;
  mProgress.elapsedMs = GetElapsedNs() / kNsPerMs;
  mChanged.notify_all();
}

void Recording::EndByTime() {
  if (mOptions.mostSeconds != 0 && GetElapsedNs() / kNsPerSecond >= mOptions.mostSeconds)
    EndTaking(RecordingEnd::TimeLimit);
}

RecordingProgress Recording::GetProgress() const {
  const std::lock_guard lock(mMutex);
  RecordingProgress progress = mProgress;
  if (progress.state == RecordingState::Recording)
    progress.elapsedMs = GetElapsedNs() / kNsPerMs;
  if (!IsOver()) {
    progress.queuedFrames = mQueue.GetFrames();
    progress.queuedBytes = mQueue.GetBytes();
  }
  return progress;
}

void Recording::NoteAcquisition() {
  const std::lock_guard lock(mMutex);
  if (mProgress.counts.received > 0)
    ++mRun;
}

void Recording::Take(const KrBuffer& aFrame, std::uint64_t aArrivalNs) {
  std::unique_ptr<RecordedFrame> taken;
  {
    const std::lock_guard lock(mMutex);
    taken = Accept(aFrame);
  }
  if (!taken)
    return;
  taken->arrivalNs = aArrivalNs;
  const KrResult copied = CopyFrame(aFrame, taken->frame);
  const std::lock_guard lock(mMutex);
  mIsCopying = false;
  if (copied.IsOK()) {
    mQueue.Push(std::move(taken));
  } else {
    NoteFailure(copied);
    mQueue.GiveBack(std::move(taken));
  }
  mChanged.notify_all();
}

// Decides what becomes of a frame; one that is recorded has its room.
std::unique_ptr<RecordedFrame> Recording::Accept(const KrBuffer& aFrame) {
  EndByTime();
  if (mProgress.state != RecordingState::Recording)
    return nullptr;
  RecordingCounts& counts = mProgress.counts;
  ++counts.received;
  if (aFrame.GetStatus() != KrBufferStatus::Complete && !mOptions.takesIncomplete) {
    ++counts.incomplete;
    ++mIncompleteBefore;
    return nullptr;
  }
  if (mCandidates++ % mOptions.everyNth != 0) {
    ++counts.passedOver;
    return nullptr;
  }
  const std::size_t bytes = GetRecordedSize(aFrame);
  if (bytes == 0) {
    NoteFailure({KrResult::Code::NotSupported, "A frame cannot be recorded: it is no image, or holds no pixels."});
    return nullptr;
  }
  std::unique_ptr<RecordedFrame> room = mQueue.TakeRoom(bytes);
  if (!room) {
    ++counts.queueFull;
    ++mQueueFullBefore;
    return nullptr;
  }
  room->run = mRun;
  room->incompleteBefore = std::exchange(mIncompleteBefore, 0);
  room->queueFullBefore = std::exchange(mQueueFullBefore, 0);
  mIsCopying = true;
  if (++mTaken == mOptions.mostFrames)
    EndTaking(RecordingEnd::FrameLimit);
  return room;
}

void Recording::NoteFailure(const KrResult& aReason) {
  ++mProgress.counts.failed;
  if (mProgress.frameFailure.IsOK())
    mProgress.frameFailure = aReason;
}

void Recording::Write() {
  RecordingFolder folder([this](std::uint64_t aBytes) { mBytesDone += aBytes; });
  const KrResult created = folder.Create(mOptions);
  if (created.IsOK()) {
    WriteFrames(folder);
  } else {
    const std::lock_guard lock(mMutex);
    Fail(created);
  }
  Finish(created.IsOK() ? &folder : nullptr);
}

void Recording::WriteFrames(RecordingFolder& aFolder) {
  bool goesOn = true;
  while (goesOn) {
    std::unique_ptr<RecordedFrame> frame = AwaitFrame();
    if (!frame)
      return;
    const RecordingEnd noRoom = aFolder.CheckRoom(frame->room);
    // The disk may have answered when nobody waited for it any more.
    const bool isWanted = noRoom == RecordingEnd::None && IsBusy();
    const KrResult written = isWanted ? aFolder.Write(*frame) : KrResult();
    const std::lock_guard lock(mMutex);
    mIsWriting = false;
    mQueue.GiveBack(std::move(frame));
    if (IsOver())
      return;
    NoteRoom(aFolder);
    goesOn = noRoom == RecordingEnd::None ? NoteWritten(written) : NoteNoRoom(noRoom);
  }
}

std::unique_ptr<RecordedFrame> Recording::AwaitFrame() {
  std::unique_lock lock(mMutex);
  for (;;) {
    if (std::unique_ptr<RecordedFrame> frame = mQueue.Pop()) {
      mIsWriting = true;
      return frame;
    }
    EndByTime();
    if (mProgress.state != RecordingState::Recording && !mIsCopying)
      return nullptr;
    mChanged.wait_for(lock, kLookInterval);
  }
}

void Recording::NoteRoom(const RecordingFolder& aFolder) {
  mProgress.counts.bytes = aFolder.GetBytes();
  mProgress.freeDiskBytes = aFolder.GetFreeBytes();
}

// What ends the writing counts also where the taking had ended already, as not all that was taken was written.
bool Recording::NoteNoRoom(RecordingEnd aReason) {
  ++mProgress.counts.abandoned;
  EndTaking(aReason);
  mProgress.end = aReason;
  return false;
}

bool Recording::NoteWritten(const KrResult& aWritten) {
  if (aWritten.IsOK()) {
    ++mProgress.counts.written;
    return true;
  }
  if (IsOfFrame(aWritten)) {
    NoteFailure(aWritten);
    return true;
  }
  ++mProgress.counts.failed;
  Fail(aWritten);
  return false;
}

void Recording::Fail(const KrResult& aReason) {
  if (IsOver())
    return;
  EndTaking(RecordingEnd::Failed);
  mProgress.end = RecordingEnd::Failed;
  mProgress.result = aReason;
}

void Recording::Finish(RecordingFolder* aFolder) {
  RecordingProgress progress;
  {
    std::unique_lock lock(mMutex);
    mChanged.wait(lock, [this] { return !mIsCopying; });
    // Who has left it has counted what was in memory, and its text is to say that it has no end.
    if (IsOver())
      return;
    mProgress.counts.abandoned += mQueue.Clear();
    progress = mProgress;
  }
  const KrResult closed = aFolder ? aFolder->Close(progress) : KrResult();
  const std::lock_guard lock(mMutex);
  if (mProgress.result.IsOK() && !closed.IsOK())
    Fail(closed);
  mProgress.state = RecordingState::Ended;
}

} // namespace krviewer
