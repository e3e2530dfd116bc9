#include "recording/recorder.h"

#include "krbase/krsteadytime.h"

#include <utility>

namespace krviewer {

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
  mEnded = TakeEnded();
  const auto recording = std::make_shared<Recording>(aOptions, mClock);
  {
    const std::lock_guard lock(mMutex);
    mRecording = recording;
  }
  mIsUntaken = true;
  mThread = std::thread([recording] { recording->Write(); });
  return {};
}

std::shared_ptr<Recording> Recorder::Get() const {
  const std::lock_guard lock(mMutex);
  return mRecording;
}

bool Recorder::IsBusy() const {
  const std::shared_ptr<Recording> recording = Get();
  return recording && recording->IsBusy();
}

void Recorder::Stop() {
  if (const std::shared_ptr<Recording> recording = Get())
    recording->Stop();
}

void Recorder::GiveUp() {
  if (const std::shared_ptr<Recording> recording = Get())
    recording->GiveUp();
}

void Recorder::Abandon() {
  GiveUp();
  if (mThread.joinable())
    mThread.join();
}

void Recorder::Leave() {
  if (!IsBusy())
    return;
  Get()->Leave();
  mThread.detach(); // It has its share of the recording, and may be waiting for ever.
}

RecordingProgress Recorder::GetProgress() const {
  const std::shared_ptr<Recording> recording = Get();
  RecordingProgress progress = recording ? recording->GetProgress() : RecordingProgress();
  const std::lock_guard lock(mMutex);
  progress.isFed = mIsFed;
  return progress;
}

std::vector<RecordingProgress> Recorder::TakeEnded() {
  std::vector<RecordingProgress> ended = std::exchange(mEnded, {});
  if (mIsUntaken && !IsBusy()) {
    mIsUntaken = false;
    ended.push_back(GetProgress());
  }
  return ended;
}

std::uint64_t Recorder::GetBytesDone() const {
  const std::shared_ptr<Recording> recording = Get();
  return recording ? recording->GetBytesDone() : 0;
}

std::shared_ptr<Recording> Recorder::SetFed(bool aIsFed) {
  const std::lock_guard lock(mMutex);
  mIsFed = aIsFed;
  return mRecording;
}

void Recorder::OnAcquisitionStarted() {
  if (const std::shared_ptr<Recording> recording = SetFed(true))
    recording->NoteAcquisition();
}

void Recorder::OnAcquisitionEnded(const KrResult&) {
  SetFed(false);
}

void Recorder::OnFrame(const KrBuffer& aFrame, std::uint64_t aArrivalNs) {
  if (const std::shared_ptr<Recording> recording = SetFed(true))
    recording->Take(aFrame, aArrivalNs);
}

} // namespace krviewer
