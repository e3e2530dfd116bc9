#pragma once
// What is known of a frame besides its pixels, as lines of "key=value" for the files that can carry them.

#include "framefile.h"

#include <string>

namespace krapps {

/// The lines that every format gets: pixel format, size, frame, times, device. Each ends with a line break. Values are
/// in one line; what is not known is "-".
std::string DescribeFrame(const KrBuffer& aFrame, const FrameFileOptions& aOptions);

/// One line, with its line break.
std::string MakeLine(std::string_view aKey, const std::string& aValue);

/// A time of the system's real-time clock as ISO 8601 in UTC with nanoseconds.
std::string FormatTime(std::uint64_t aNanoseconds);

} // namespace krapps
