#include "bridge/portlink.h"

#include "comname.h"

#include <fcntl.h>
#include <limits.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <optional>
#include <string_view>
#include <system_error>
#include <utility>

namespace krserial {

namespace {

KrResult MakeFailure(const std::string& aWhat, int aError) {
  const bool isDenied = aError == EACCES || aError == EPERM || aError == EROFS;
  return {isDenied ? KrResult::Code::AccessDenied : KrResult::Code::SystemError,
          aWhat + ": " + std::generic_category().message(aError) + "."};
}

// What a lock's file begins with, before the target of its owner's link. Any other file is not ours.
constexpr std::string_view kMark = "krgui makes the port of the link to\n";

std::filesystem::path GetLockPath(const std::filesystem::path& aLink) {
  return aLink.parent_path() / ("." + aLink.filename().string() + ".lock");
}

// Whether the lock's file is still the one under its name: its last owner removes it.
bool IsThatFile(int aDescriptor, const std::filesystem::path& aPath) {
  struct stat opened = {};
  struct stat named = {};
  return ::fstat(aDescriptor, &opened) == 0 && ::lstat(aPath.c_str(), &named) == 0 && opened.st_ino == named.st_ino &&
         opened.st_dev == named.st_dev;
}

bool IsOwnFile(int aDescriptor) {
  struct stat status = {};
  return ::fstat(aDescriptor, &status) == 0 && S_ISREG(status.st_mode) && status.st_uid == ::geteuid() &&
         status.st_nlink <= 1;
}

// What the lock's owner has linked, or would have: empty before it is noted. Nothing for a file that no bridge wrote.
std::optional<std::string> ReadTarget(int aLock) {
  std::array<char, kMark.size() + PATH_MAX> text;
  const ssize_t size = IsOwnFile(aLock) ? ::pread(aLock, text.data(), text.size(), 0) : -1;
  if (size < 0)
    return std::nullopt;
  const std::string_view read(text.data(), static_cast<std::size_t>(size));
  if (read.starts_with(kMark))
    return std::string(read.substr(kMark.size()));
  // One that was killed while it wrote.
  return kMark.starts_with(read) ? std::optional<std::string>(std::in_place) : std::nullopt;
}

// A lock that can be asked about without being taken.
struct flock MakeWholeLock() {
  struct flock lock = {};
  lock.l_type = F_WRLCK;
  lock.l_whence = SEEK_SET;
  return lock;
}

bool IsLocked(int aLock) {
  struct flock lock = MakeWholeLock();
  return ::fcntl(aLock, F_OFD_GETLK, &lock) == 0 && lock.l_type != F_UNLCK;
}

KrResult TakeLock(const std::filesystem::path& aPath, krbase::FileDescriptor& aLock) {
  for (;;) {
    krbase::FileDescriptor lock(
        ::open(aPath.c_str(), O_RDWR | O_CREAT | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC, 0600));
    if (!lock.IsOpen())
      return MakeFailure("Opening " + aPath.string(), errno);
    struct flock whole = MakeWholeLock();
    if (::fcntl(lock.Get(), F_OFD_SETLK, &whole) != 0)
      return errno == EAGAIN || errno == EACCES
                 ? KrResult(KrResult::Code::Busy, "Another bridge makes the port of " + aPath.string() + ".")
                 : MakeFailure("Locking " + aPath.string(), errno);
    if (!IsThatFile(lock.Get(), aPath))
      continue;
    if (!ReadTarget(lock.Get()))
      return {KrResult::Code::WrongState, aPath.string() + " is there already, and no bridge wrote it. Remove it, or "
                                                           "choose another number."};
    aLock = std::move(lock);
    return {};
  }
}

// Of the lock's last owner. One that was killed has left the link.
void RemoveStaleLink(const std::filesystem::path& aPath, int aLock) {
  std::error_code error;
  const std::filesystem::path found = std::filesystem::read_symlink(aPath, error);
  if (!error && found.native() == ReadTarget(aLock))
    std::filesystem::remove(aPath, error); // What is still there then is found taken.
}

bool NoteTarget(int aLock, const std::string& aTarget) {
  const std::string text = std::string(kMark) + aTarget;
  return ::ftruncate(aLock, 0) == 0 &&
         ::pwrite(aLock, text.data(), text.size(), 0) == static_cast<ssize_t>(text.size());
}

// The name in the folder, in whatever case, that has the number already.
std::filesystem::path FindTaken(const std::filesystem::path& aFolder, std::uint32_t aNumber) {
  std::error_code error;
  for (std::filesystem::directory_iterator entry(aFolder, error), end; !error && entry != end; entry.increment(error))
    if (ParseComName(entry->path().filename().native()) == aNumber)
      return entry->path();
  return {};
}

} // namespace

PortLink::PortLink(std::filesystem::path aPath, std::filesystem::path aLockPath, std::string aTarget,
                   krbase::FileDescriptor aLock)
    : mPath(std::move(aPath)), mLockPath(std::move(aLockPath)), mTarget(std::move(aTarget)), mLock(std::move(aLock)) {}

KrResult PortLink::Make(const std::string& aFolder, std::uint32_t aNumber, const std::string& aTarget,
                        std::unique_ptr<PortLink>& aLink) {
  const std::filesystem::path folder = aFolder;
  const std::string name = "com" + std::to_string(aNumber);
  std::error_code error;
  std::filesystem::create_directories(folder, error);
  if (error)
    return MakeFailure("Making the folder " + aFolder, error.value());
  krbase::FileDescriptor lock;
  const std::filesystem::path lockPath = GetLockPath(folder / name);
  if (KrResult taken = TakeLock(lockPath, lock); !taken.IsOK())
    return taken;
  RemoveStaleLink(folder / name, lock.Get());
  const bool isNoted = NoteTarget(lock.Get(), aTarget);
  const int failure = errno;
  // From here on the lock's file is removed with the object; the link only once it is ours.
  std::unique_ptr<PortLink> link(new PortLink(folder / name, lockPath, aTarget, std::move(lock)));
  if (!isNoted)
    return MakeFailure("Writing " + link->mLockPath.string(), failure);
  if (const std::filesystem::path taken = FindTaken(folder, aNumber); !taken.empty())
    return {KrResult::Code::WrongState, taken.string() + " is there already. Remove it, or choose another number."};
  std::filesystem::create_symlink(aTarget, link->mPath, error);
  if (error)
    return error.value() == EEXIST ? KrResult(KrResult::Code::WrongState, link->mPath.string() + " is there already.")
                                   : MakeFailure("Linking " + link->mPath.string(), error.value());
  link->mIsLinked = true;
  aLink = std::move(link);
  return {};
}

// The maker notes where it links to before it does, and keeps the lock until the link is gone.
PortLink::Maker PortLink::FindMaker(const std::filesystem::path& aLink) {
  std::error_code error;
  std::filesystem::path target = std::filesystem::read_symlink(aLink, error);
  while (!error) {
    const krbase::FileDescriptor lock(
        ::open(GetLockPath(aLink).c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
    if (lock.IsOpen() && target.native() == ReadTarget(lock.Get()))
      return IsLocked(lock.Get()) ? Maker::Bridge : Maker::Killed;
    // A link that has changed meanwhile may be the one that was noted.
    const std::filesystem::path former = std::exchange(target, std::filesystem::read_symlink(aLink, error));
    if (former == target)
      break;
  }
  return Maker::Nobody;
}

PortLink::~PortLink() {
  std::error_code error; // What cannot be removed is found as a stale one.
  if (mIsLinked && std::filesystem::read_symlink(mPath, error) == mTarget && !error)
    std::filesystem::remove(mPath, error);
  // Another bridge's, where somebody has removed ours.
  if (IsThatFile(mLock.Get(), mLockPath))
    std::filesystem::remove(mLockPath, error);
}

} // namespace krserial
