#pragma once
// A recording on the disk: a folder of its own with a file for each frame, their index, and a text that says what the
// recording is and what became of it. Which frames are recorded, and the threads, are left to the recorder.

#include "recording/newfile.h"
#include "recording/recordingindex.h"
#include "recording/recordingoptions.h"
#include "recording/recordingprogress.h"

#include <cstdint>
#include <string>
#include <utility>

namespace krviewer {

/// Thread: one at a time.
class RecordingFolder {
public:
  /// aProgress hears of bytes of frames' files that have got on, while they are written; may be empty.
  explicit RecordingFolder(NewFile::Progress aProgress = {}) : mProgress(std::move(aProgress)) {}

  /// Makes the folder with an empty index. WrongState for a name that is taken, otherwise what the system says; what
  /// was begun is then removed.
  KrResult Create(const RecordingOptions& aOptions);

  /// Why the next frame, of so many bytes, must not be written: DiskBudget, DiskReserve, or None. TIFF and PNG files,
  /// whose size is not known before, are taken for as large as the frame.
  RecordingEnd CheckRoom(std::uint64_t aBytes);
  /// Writes a frame's file and then its line of the index. NotSupported and BadData where the frame itself cannot be
  /// written in this format, which leaves the recording in order; otherwise nothing more should be written. No part of
  /// the frame is left then.
  KrResult Write(const RecordedFrame& aFrame);
  /// Says in the text what became of the recording, and closes the index.
  KrResult Close(const RecordingProgress& aProgress);

  std::uint64_t GetBytes() const { return mBytes; }
  std::uint64_t GetFreeBytes() const { return mFreeBytes; }

private:
  KrResult Fill();
  KrResult WriteText(const RecordingProgress* aProgress) const;
  KrResult WriteFile(const RecordedFrame& aFrame, const std::string& aPath, std::uint64_t& aBytes) const;
  KrResult WriteRaw(const RecordedFrame& aFrame, const std::string& aPath, std::uint64_t& aBytes) const;
  std::string GetPath(const std::string& aName) const { return mOptions.folder + "/" + aName; }

  const NewFile::Progress mProgress;
  RecordingOptions mOptions;
  RecordingIndex mIndex;
  std::string mBeginTime;
  std::uint64_t mNumber = 0; ///< Of the frame last written.
  std::uint64_t mBytes = 0;
  std::uint64_t mFreeBytes = 0;
};

/// The word for a reason in the text; "-" for none.
const char* GetEndWord(RecordingEnd aEnd);

} // namespace krviewer
