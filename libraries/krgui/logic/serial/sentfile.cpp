#include "logic/serial/sentfile.h"

#include <algorithm>
#include <cerrno>
#include <utility>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace krgui {

namespace {

/// Some files can be opened and not be read.
bool CanBeRead(int aDescriptor) {
  std::uint8_t byte = 0;
  ssize_t result = 0;
  do {
    result = ::pread(aDescriptor, &byte, sizeof byte, 0);
  } while (result < 0 && errno == EINTR);
  return result >= 0;
}

} // namespace

std::optional<SentFile> SentFile::Open(const KrString& aPath) {
  // Asked for before the opening, which alone makes some devices do something.
  struct stat status = {};
  if (::stat(aPath.CStr(), &status) != 0 || !S_ISREG(status.st_mode))
    return std::nullopt;
  // And after it: the name may have become a pipe's, at which opening does not wait.
  const int descriptor = ::open(aPath.CStr(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
  if (descriptor < 0)
    return std::nullopt;
  SentFile file(descriptor, 0);
  if (::fstat(descriptor, &status) != 0 || !S_ISREG(status.st_mode) || !CanBeRead(descriptor))
    return std::nullopt;
  file.mSize = file.mLeft = static_cast<std::uint64_t>(status.st_size);
  return file;
}

SentFile::SentFile(SentFile&& aOther) noexcept
    : mDescriptor(std::exchange(aOther.mDescriptor, -1)), mSize(aOther.mSize), mLeft(aOther.mLeft) {}

SentFile::~SentFile() {
  if (mDescriptor >= 0)
    ::close(mDescriptor);
}

std::size_t SentFile::Read(std::span<std::uint8_t> aBytes) {
  const std::size_t wanted = static_cast<std::size_t>(std::min<std::uint64_t>(aBytes.size(), mLeft));
  std::size_t count = 0;
  while (count < wanted) {
    const ssize_t result = ::read(mDescriptor, aBytes.data() + count, wanted - count);
    if (result < 0 && errno == EINTR)
      continue;
    if (result <= 0) {
      mLeft = 0;
      return count;
    }
    count += static_cast<std::size_t>(result);
  }
  mLeft -= count;
  return count;
}

} // namespace krgui
