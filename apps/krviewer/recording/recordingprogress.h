#pragma once
// What a recording has come to, as a value that may be copied from the recorder at any time. Words for it are left to
// RecordingTexts.

#include "krbase/krresult.h"

#include <cstdint>

namespace krviewer {

enum class RecordingState {
  Idle,      ///< None was begun.
  Recording, ///< Frames are taken.
  Finishing, ///< No more are taken; those in memory are still written.
  Ended,     ///< The files are closed.
};

/// Why no more frames are taken.
enum class RecordingEnd {
  None,
  Stopped,
  FrameLimit,
  TimeLimit,
  DiskBudget,  ///< The next frame would have made the files larger than allowed.
  DiskReserve, ///< It would have taken room that is to stay free.
  Failed,      ///< Nothing more could be written; the result says why.
};

/// Each frame received is in exactly one of the others, or still in memory.
struct RecordingCounts {
  std::uint64_t received = 0;
  std::uint64_t written = 0;
  std::uint64_t passedOver = 0; ///< By choice, as only every n-th is recorded.
  std::uint64_t incomplete = 0; ///< Left out, as a part of them never came.
  std::uint64_t queueFull = 0;  ///< Left out, as the memory for frames was full.
  std::uint64_t failed = 0;     ///< Could not be written.
  std::uint64_t abandoned = 0;  ///< Were in memory when nothing more could or should be written.
  std::uint64_t bytes = 0;      ///< Of all frames' files.
};

struct RecordingProgress {
  RecordingState state = RecordingState::Idle;
  RecordingEnd end = RecordingEnd::None;
  KrResult result;       ///< Why it failed.
  KrResult frameFailure; ///< Why the first frame that could not be written for its own sake could not.
  RecordingCounts counts;
  std::uint64_t queuedFrames = 0; ///< Taken and not written yet.
  std::uint64_t queuedBytes = 0;
  std::uint64_t elapsedMs = 0;     ///< From the start to now, or to the end of the taking.
  std::uint64_t freeDiskBytes = 0; ///< On the recording's file system, when it was last looked at.
  bool keepsDiskFree = true;       ///< Whether some room on the disk was to stay free.
  bool isFed = true;               ///< The camera is streaming; otherwise its next frames are awaited.
};

} // namespace krviewer
