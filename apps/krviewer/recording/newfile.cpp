#include "recording/newfile.h"

#include <algorithm>
#include <cerrno>
#include <system_error>

#include <fcntl.h>
#include <sys/types.h>
#include <unistd.h>

namespace krviewer {

namespace {

constexpr mode_t kNewFileRights = 0666;                   // Less what the process' mask takes.
constexpr std::size_t kStepBytes = std::size_t{4} << 20U; // Between two words of progress.

KrResult::Code FindCode(int aError) {
  switch (aError) {
  case EEXIST:
    return KrResult::Code::WrongState;
  case ENOENT:
  case ENOTDIR:
    return KrResult::Code::NotFound;
  case EACCES:
  case EPERM:
  case EROFS:
    return KrResult::Code::AccessDenied;
  default:
    return KrResult::Code::SystemError;
  }
}

} // namespace

KrResult MakeFileError(const std::string& aAttempt, const std::string& aPath, int aError) {
  return {FindCode(aError), aAttempt + " \"" + aPath + "\" failed: " + std::generic_category().message(aError) + "."};
}

KrResult NewFile::Create(const std::string& aPath) {
  mPath = aPath;
  mSize = 0;
  mFile = krbase::FileDescriptor(::open(aPath.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, kNewFileRights));
  return mFile.IsOpen() ? KrResult() : MakeFileError("Making the file", mPath, errno);
}

KrResult NewFile::Append(const void* aBytes, std::size_t aCount, const Progress& aProgress) {
  KrResult written = Write(aBytes, aCount, aProgress);
  if (written.IsOK()) {
    mSize += aCount;
    return written;
  }
  // A part that is left behind would pass for data; where the system does not even shorten, the result says enough.
  const auto size = static_cast<off_t>(mSize);
  [[maybe_unused]] const bool isShortened =
      ::ftruncate(mFile.Get(), size) == 0 && ::lseek(mFile.Get(), size, SEEK_SET) == size;
  return written;
}

KrResult NewFile::Write(const void* aBytes, std::size_t aCount, const Progress& aProgress) {
  const auto* next = static_cast<const char*>(aBytes);
  while (aCount > 0) {
    const ssize_t written = ::write(mFile.Get(), next, std::min(aCount, kStepBytes));
    if (written < 0 && errno != EINTR)
      return MakeFileError("Writing to the file", mPath, errno);
    if (written > 0) {
      next += written;
      aCount -= static_cast<std::size_t>(written);
      if (aProgress)
        aProgress(static_cast<std::uint64_t>(written));
    }
  }
  return {};
}

KrResult NewFile::Close() {
  return mFile.Close() ? KrResult() : MakeFileError("Writing to the file", mPath, errno);
}

void NewFile::Remove() {
  mFile = {};
  ::unlink(mPath.c_str());
}

} // namespace krviewer
