#include "recording/recorder.h"

#include "krbase/krsteadytime.h"

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

Recorder::Recorder(Clock aClock) : mClock(aClock ? std::move(aClock) : Clock(&KrGetSteadyNs)) {}

Recorder::~Recorder() {
  Abandon();
}

KrResult Recorder::Start(const RecordingOptions& aOptions) {
  if (IsBusy())
    return {KrResult::Code::WrongState, "A recording cannot be started: another one is not over yet. Stop it first."};
  if (aOptions.folder.empty() || aOptions.everyNth == 0 || aOptions.mostQueuedFrames == 0)
    return {KrResult::Code::InvalidInput, "A recording cannot be started without a folder, for every 0th frame, or "
                                          "without room for a frame in memory."};
  if (mThread.joinable())
    mThread.join();
  {
    const std::lock_guard lock(mMutex);
    mOptions = aOptions;
    mQueue.Reset(mOptions.mostQueuedBytes, mOptions.mostQueuedFrames);
    mProgress = {};
    mProgress.state = RecordingState::Recording;
    mProgress.keepsDiskFree = mOptions.freeDiskBytes > 0;
    mBeginNs = mClock();
    mCandidates = 0;
    mTaken = 0;
    mRun = 1;
    mIncompleteBefore = 0;
    mQueueFullBefore = 0;
  }
  mThread = std::jthread([this] { Run(); });
  return {};
}

bool Recorder::IsBusy() const {
  const std::lock_guard lock(mMutex);
  return mProgress.state == RecordingState::Recording || mProgress.state == RecordingState::Finishing;
}

void Recorder::Stop() {
  const std::lock_guard lock(mMutex);
  EndTaking(RecordingEnd::Stopped);
}

void Recorder::GiveUp() {
  const std::lock_guard lock(mMutex);
  EndTaking(RecordingEnd::Stopped);
  mProgress.counts.abandoned += mQueue.Clear();
  mChanged.notify_all();
}

void Recorder::Abandon() {
  GiveUp();
  if (mThread.joinable())
    mThread.join();
}

void Recorder::EndTaking(RecordingEnd aEnd) {
  if (mProgress.state != RecordingState::Recording)
    return;
  mProgress.state = RecordingState::Finishing;
  mProgress.end = aEnd;
  mProgress.elapsedMs = GetElapsedNs() / kNsPerMs;
  mChanged.notify_all();
}

void Recorder::EndByTime() {
  if (mOptions.mostSeconds != 0 && GetElapsedNs() / kNsPerSecond >= mOptions.mostSeconds)
    EndTaking(RecordingEnd::TimeLimit);
}

RecordingProgress Recorder::GetProgress() const {
  const std::lock_guard lock(mMutex);
  RecordingProgress progress = mProgress;
  if (progress.state == RecordingState::Recording)
    progress.elapsedMs = GetElapsedNs() / kNsPerMs;
  progress.queuedFrames = mQueue.GetFrames();
  progress.queuedBytes = mQueue.GetBytes();
  progress.isFed = mIsFed;
  return progress;
}

void Recorder::OnAcquisitionStarted() {
  const std::lock_guard lock(mMutex);
  mIsFed = true;
  if (mProgress.counts.received > 0)
    ++mRun;
}

void Recorder::OnAcquisitionEnded(const KrResult&) {
  const std::lock_guard lock(mMutex);
  mIsFed = false;
}

void Recorder::OnFrame(const KrBuffer& aFrame, std::uint64_t aArrivalNs) {
  std::unique_ptr<RecordedFrame> taken;
  {
    const std::lock_guard lock(mMutex);
    mIsFed = true;
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
std::unique_ptr<RecordedFrame> Recorder::Accept(const KrBuffer& aFrame) {
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

void Recorder::NoteFailure(const KrResult& aReason) {
  ++mProgress.counts.failed;
  if (mProgress.frameFailure.IsOK())
    mProgress.frameFailure = aReason;
}

void Recorder::Run() {
  RecordingFolder folder;
  const KrResult created = folder.Create(mOptions);
  if (created.IsOK()) {
    WriteFrames(folder);
  } else {
    const std::lock_guard lock(mMutex);
    Fail(created);
  }
  Finish(created.IsOK() ? &folder : nullptr);
}

void Recorder::WriteFrames(RecordingFolder& aFolder) {
  bool goesOn = true;
  while (goesOn) {
    std::unique_ptr<RecordedFrame> frame = AwaitFrame();
    if (!frame)
      return;
    const RecordingEnd noRoom = aFolder.CheckRoom(frame->room);
    const KrResult written = noRoom == RecordingEnd::None ? aFolder.Write(*frame) : KrResult();
    const std::lock_guard lock(mMutex);
    mQueue.GiveBack(std::move(frame));
    NoteRoom(aFolder);
    goesOn = noRoom == RecordingEnd::None ? NoteWritten(written) : NoteNoRoom(noRoom);
  }
}

std::unique_ptr<RecordedFrame> Recorder::AwaitFrame() {
  std::unique_lock lock(mMutex);
  for (;;) {
    if (std::unique_ptr<RecordedFrame> frame = mQueue.Pop())
      return frame;
    EndByTime();
    if (mProgress.state != RecordingState::Recording && !mIsCopying)
      return nullptr;
    mChanged.wait_for(lock, kLookInterval);
  }
}

void Recorder::NoteRoom(const RecordingFolder& aFolder) {
  mProgress.counts.bytes = aFolder.GetBytes();
  mProgress.freeDiskBytes = aFolder.GetFreeBytes();
}

// What ends the writing counts also where the taking had ended already, as not all that was taken was written.
bool Recorder::NoteNoRoom(RecordingEnd aReason) {
  ++mProgress.counts.abandoned;
  EndTaking(aReason);
  mProgress.end = aReason;
  return false;
}

bool Recorder::NoteWritten(const KrResult& aWritten) {
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

void Recorder::Fail(const KrResult& aReason) {
  EndTaking(RecordingEnd::Failed);
  mProgress.end = RecordingEnd::Failed;
  mProgress.result = aReason;
}

void Recorder::Finish(RecordingFolder* aFolder) {
  RecordingProgress progress;
  {
    std::unique_lock lock(mMutex);
    mChanged.wait(lock, [this] { return !mIsCopying; });
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
