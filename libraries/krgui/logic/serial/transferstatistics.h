#pragma once
// The lines that sum up a file transfer. Within them a line ends in a single line feed, and so does each of them; the
// CR LF that the transcript has behind each is added by the window that shows it.

#include "krbase/krstring.h"

#include <cstdint>
#include <string>

namespace krgui {

/// Line 1: how long the transfer of a file took, in whole seconds and in milliseconds. It begins with CR LF, and has
/// another before the path. Thread: any.
std::u16string FormatTransferTime(std::uint64_t aMilliseconds, const KrString& aPath);
/// Line 2: how much of the file was written, with 4 significant digits of the percentage. Of an empty file it is 0 of
/// 0, and 0 per cent. Thread: any.
std::u16string FormatTransferred(std::uint64_t aWritten, std::uint64_t aFileSize);
/// Line 3: how much of what was written came back: what is not outstanding. Where nothing was written it is 0 per cent,
/// for a check that had nothing to look at must not read as passed. Thread: any.
std::u16string FormatReturned(std::uint64_t aWritten, std::uint64_t aOutstanding);

} // namespace krgui
