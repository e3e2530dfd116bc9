#pragma once
// The list of a recording's frames, a line each, which is whole whenever it is looked at: what stands there is on the
// disk, also when the program is killed meanwhile. docs/saving.md says what the columns are.

#include "recording/newfile.h"
#include "recording/recordedframe.h"

#include <cstdint>
#include <string>

namespace krviewer {

/// Thread: one at a time.
class RecordingIndex {
public:
  /// Makes the file, with the names of the columns.
  KrResult Create(const std::string& aPath);
  /// Appends the line of a frame whose file is there: its number, the file's name and size.
  KrResult Add(const RecordedFrame& aFrame, std::uint64_t aNumber, const std::string& aFile, std::uint64_t aBytes);
  KrResult Close() { return mFile.Close(); }

private:
  NewFile mFile;
};

} // namespace krviewer
