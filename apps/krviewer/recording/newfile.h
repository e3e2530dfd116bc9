#pragma once
// A file that is written from its beginning to its end and was not there before. Other than KrAtomicFile it is not
// flushed to the disk, which would cost more than the writing where there are a hundred files in a second.

#include "krbase/filedescriptor.h"
#include "krbase/krresult.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>

namespace krviewer {

/// Thread: one at a time. Ownership: owns the open file; the file itself stays.
class NewFile {
public:
  /// Makes the file. WrongState for a name that is taken, NotFound, AccessDenied or SystemError as the system has it;
  /// descriptions name the file.
  KrResult Create(const std::string& aPath);
  /// Hears of bytes that the system has taken, every few megabytes.
  using Progress = std::function<void(std::uint64_t aBytes)>;

  /// Appends; after a failure the file is as long as before, if the system allows.
  KrResult Append(const void* aBytes, std::size_t aCount, const Progress& aProgress = {});
  /// Tells what the system has left to report.
  KrResult Close();
  /// Closes and removes it.
  void Remove();

  std::uint64_t GetSize() const { return mSize; }

private:
  KrResult Write(const void* aBytes, std::size_t aCount, const Progress& aProgress);

  std::string mPath;
  krbase::FileDescriptor mFile;
  std::uint64_t mSize = 0;
};

/// The result of an operation on a path that the system refused with an error number.
KrResult MakeFileError(const std::string& aAttempt, const std::string& aPath, int aError);

} // namespace krviewer
