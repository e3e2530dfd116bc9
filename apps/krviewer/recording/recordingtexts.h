#pragma once
// Words for what a recording has come to. Where they are shown is left to the panel.

#include "recording/recordingprogress.h"

#include <cstdint>
#include <string>

namespace krviewer {

/// For example "1.5 GB", of 10^9 bytes.
std::string FormatBytes(std::uint64_t aBytes);

/// What goes on, or how it ended; empty where nothing was recorded yet.
std::string DescribeState(const RecordingProgress& aProgress);
/// What is on the disk, for example "120 frames, 245.8 MB".
std::string DescribeWritten(const RecordingCounts& aCounts);
/// Which frames are missing and why, with what can be done about it; says that none is, but for what could not begin.
std::string DescribeLosses(const RecordingProgress& aProgress);
/// Whether a frame is missing that was not left out by choice.
bool HasLosses(const RecordingCounts& aCounts);
/// Whether it has not failed before anything was written.
bool CouldBegin(const RecordingProgress& aProgress);
/// Whether something that was to be recorded could not be written. What was given up, or is beyond a limit that was
/// asked for, was not to be.
bool HasFailed(const RecordingProgress& aProgress);

} // namespace krviewer
