#include "krbase/krwholefile.h"

#include "krbase/filedescriptor.h"

#include <array>
#include <cerrno>
#include <system_error>
#include <utility>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

KrResult MakeError(int aError) {
  const bool isMissing = aError == ENOENT || aError == ENOTDIR;
  const bool isDenied = aError == EACCES || aError == EPERM;
  return {isMissing  ? KrResult::Code::NotFound
          : isDenied ? KrResult::Code::AccessDenied
                     : KrResult::Code::SystemError,
          std::generic_category().message(aError) + "."};
}

} // namespace

KrResult KrReadWholeFile(const KrString& aFileName, std::size_t aMostBytes, std::string& aBytes) {
  if (aFileName.ToUtf8().find('\0') != std::string::npos)
    return {KrResult::Code::InvalidInput, "its name holds a zero byte."};
  // A pipe that nobody writes to, or a terminal, must not keep the opening waiting.
  const krbase::FileDescriptor file(::open(aFileName.CStr(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
  struct stat status = {};
  if (!file.IsOpen() || ::fstat(file.Get(), &status) != 0)
    return MakeError(errno);
  // A pipe would keep us waiting for bytes, a device could give them without end. What is open cannot be exchanged.
  if (!S_ISREG(status.st_mode))
    return {KrResult::Code::InvalidInput, "it is no file."};

  std::string bytes;
  std::array<char, 65536> block;
  for (;;) {
    const ssize_t count = ::read(file.Get(), block.data(), block.size());
    if (count < 0 && errno == EINTR)
      continue;
    if (count < 0)
      return MakeError(errno);
    if (count == 0)
      break;
    bytes.append(block.data(), static_cast<std::size_t>(count));
    if (bytes.size() > aMostBytes)
      return {KrResult::Code::OutOfRange, "it is longer than the limit of " + std::to_string(aMostBytes) + " bytes."};
  }
  aBytes = std::move(bytes);
  return {};
}
