#include "clportfiles.h"

#include "krbase/krclwire.h"

#include <array>
#include <cerrno>
#include <charconv>
#include <chrono>
#include <cstdio>
#include <memory>
#include <optional>
#include <string_view>
#include <system_error>
#include <thread>

#include <dirent.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/socket.h>
#include <unistd.h>

namespace krbase {

namespace {

constexpr std::string_view kLockEnding = ".lock";
constexpr const char* kDirectoryLock = "directory.lock";
constexpr std::chrono::milliseconds kBetweenTries{5};

struct CloseDirectory {
  void operator()(DIR* aDirectory) const { ::closedir(aDirectory); }
};

// The number of a lock file; nothing for another file.
std::optional<std::uint32_t> ReadNumber(std::string_view aFileName) {
  if (!aFileName.ends_with(kLockEnding))
    return std::nullopt;
  aFileName.remove_suffix(kLockEnding.size());
  std::uint32_t number = 0;
  const auto [end, error] = std::from_chars(aFileName.data(), aFileName.data() + aFileName.size(), number);
  const bool isNumber = error == std::errc() && end == aFileName.data() + aFileName.size();
  return isNumber && std::to_string(number) == aFileName ? std::optional(number) : std::nullopt;
}

FileDescriptor OpenLock(int aDirectory, std::uint32_t aNumber) {
  return FileDescriptor(
      ::openat(aDirectory, MakeCLLockName(aNumber).c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
}

// Nobody but the port's process locks it for itself, and not before the file has its name.
bool IsDead(const FileDescriptor& aLock) {
  return ::flock(aLock.Get(), LOCK_SH | LOCK_NB) == 0;
}

std::string ReadName(const FileDescriptor& aLock) {
  std::array<char, kKrCLMostName> name = {};
  const ssize_t length = ::pread(aLock.Get(), name.data(), name.size(), 0);
  return {name.data(), length > 0 ? static_cast<std::size_t>(length) : 0};
}

void Look(int aDirectory, std::uint32_t aNumber, CLPortFiles& aFound) {
  const FileDescriptor lock = OpenLock(aDirectory, aNumber);
  if (!lock.IsOpen())
    return; // It has just gone.
  if (IsDead(lock))
    aFound.dead.push_back(aNumber);
  else if (const std::string name = ReadName(lock); !name.empty())
    aFound.living.push_back({aNumber, name});
}

} // namespace

std::string MakeCLLockName(std::uint32_t aNumber) {
  return std::to_string(aNumber).append(kLockEnding);
}

std::string MakeCLNewName(std::uint32_t aNumber) {
  return std::to_string(aNumber) + ".new";
}

std::string MakeCLSocketName(std::uint32_t aNumber) {
  return std::to_string(aNumber) + ".sock";
}

sockaddr_un MakeCLAddress(int aDirectory, std::uint32_t aNumber) {
  sockaddr_un address = {};
  address.sun_family = AF_UNIX;
  std::snprintf(address.sun_path, sizeof address.sun_path, "/proc/self/fd/%d/%s", aDirectory,
                MakeCLSocketName(aNumber).c_str());
  return address;
}

KrResult FindCLPorts(int aDirectory, CLPortFiles& aFound) {
  // The stream has a descriptor of its own, with a place of its own.
  const int descriptor = ::openat(aDirectory, ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (descriptor < 0)
    return MakeCLSystemError("Reading the directory of Camera Link ports", errno);
  const std::unique_ptr<DIR, CloseDirectory> directory(::fdopendir(descriptor));
  if (!directory) {
    const int error = errno;
    ::close(descriptor);
    return MakeCLSystemError("Reading the directory of Camera Link ports", error);
  }
  for (const dirent* entry = ::readdir(directory.get()); entry != nullptr; entry = ::readdir(directory.get()))
    if (const std::optional<std::uint32_t> number = ReadNumber(entry->d_name))
      Look(aDirectory, *number, aFound);
  return {};
}

KrResult LockCLDirectory(int aDirectory, std::chrono::milliseconds aLimit, FileDescriptor& aLock) {
  constexpr const char* kLock = "Locking the directory of Camera Link ports";
  FileDescriptor lock(::openat(aDirectory, kDirectoryLock, O_RDWR | O_CREAT | O_NOFOLLOW | O_CLOEXEC, 0600));
  const auto end = std::chrono::steady_clock::now() + aLimit;
  if (!lock.IsOpen())
    return MakeCLSystemError(kLock, errno);
  while (::flock(lock.Get(), LOCK_EX | LOCK_NB) != 0) {
    if (errno != EWOULDBLOCK && errno != EINTR)
      return MakeCLSystemError(kLock, errno);
    if (std::chrono::steady_clock::now() >= end)
      return {KrResult::Code::Busy, std::string(kLock) + " failed: another process keeps it locked."};
    std::this_thread::sleep_for(kBetweenTries);
  }
  aLock = std::move(lock);
  return {};
}

void RemoveDeadCLPorts(int aDirectory, const std::vector<std::uint32_t>& aNumbers) {
  for (const std::uint32_t number : aNumbers) {
    // It may have been removed, and the number given to another, before the directory was locked.
    const FileDescriptor lock = OpenLock(aDirectory, number);
    if (!lock.IsOpen() || !IsDead(lock))
      continue;
    ::unlinkat(aDirectory, MakeCLSocketName(number).c_str(), 0);
    ::unlinkat(aDirectory, MakeCLLockName(number).c_str(), 0);
  }
}

KrResult MakeCLSystemError(const char* aAttempt, int aError) {
  const bool isDenied = aError == EACCES || aError == EPERM || aError == EROFS;
  return {isDenied ? KrResult::Code::AccessDenied : KrResult::Code::SystemError,
          std::string(aAttempt) + " failed: " + std::generic_category().message(aError) + "."};
}

} // namespace krbase
