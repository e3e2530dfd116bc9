#pragma once
// What a recording is asked to be. How it goes is told by its progress.

#include "framefile.h"

#include <cstdint>
#include <string>

namespace krviewer {

struct RecordingOptions {
  std::string folder; ///< The recording's own: it is made, and may not exist yet; the one around it must.
  krapps::FrameFileFormat format = krapps::FrameFileFormat::Raw;
  bool takesIncomplete = false; ///< Frames of which a part never came are recorded as well.
  std::uint64_t everyNth = 1;   ///< Of the frames that may be recorded, this one of so many is; at least 1.

  std::uint64_t mostFrames = 0;                ///< Ends after so many; 0 for no limit.
  std::uint64_t mostSeconds = 0;               ///< Ends so long after its start; 0 for no limit.
  std::uint64_t mostDiskBytes = 0;             ///< Of all frames' files together; 0 for no limit.
  std::uint64_t freeDiskBytes = 1'000'000'000; ///< Are left free on the file system.
  std::uint64_t mostQueuedBytes = 512'000'000; ///< Of memory for frames; one frame is always held.
  std::uint64_t mostQueuedFrames = 4096;       ///< In that memory; at least 1.

  KrString deviceID; ///< Goes into the descriptions.
  KrString software = "KrGUI";
};

} // namespace krviewer
