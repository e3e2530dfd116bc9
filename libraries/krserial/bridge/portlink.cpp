#include "bridge/portlink.h"

#include "comname.h"

#include <fcntl.h>
#include <limits.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
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

// Whether the lock's file is still the one under its name: its last owner removes it.
bool IsThatFile(int aDescriptor, const std::filesystem::path& aPath) {
  struct stat opened = {};
  struct stat named = {};
  return ::fstat(aDescriptor, &opened) == 0 && ::lstat(aPath.c_str(), &named) == 0 && opened.st_ino == named.st_ino &&
         opened.st_dev == named.st_dev;
}

KrResult TakeLock(const std::filesystem::path& aPath, krbase::FileDescriptor& aLock) {
  for (;;) {
    krbase::FileDescriptor lock(::open(aPath.c_str(), O_RDWR | O_CREAT | O_NOFOLLOW | O_CLOEXEC, 0600));
    if (!lock.IsOpen())
      return MakeFailure("Opening " + aPath.string(), errno);
    if (::flock(lock.Get(), LOCK_EX | LOCK_NB) != 0)
      return errno == EWOULDBLOCK
                 ? KrResult(KrResult::Code::Busy, "Another bridge makes the port of " + aPath.string() + ".")
                 : MakeFailure("Locking " + aPath.string(), errno);
    if (IsThatFile(lock.Get(), aPath)) {
      aLock = std::move(lock);
      return {};
    }
  }
}

// What the lock's last owner linked. One that was killed has left the link.
void RemoveStaleLink(const std::filesystem::path& aPath, int aLock) {
  std::array<char, PATH_MAX> target;
  const ssize_t size = ::pread(aLock, target.data(), target.size(), 0);
  std::error_code error;
  const std::filesystem::path found = std::filesystem::read_symlink(aPath, error);
  if (!error && size > 0 && found.native() == std::string_view(target.data(), static_cast<std::size_t>(size)))
    std::filesystem::remove(aPath, error); // What is still there then is found taken.
}

bool NoteTarget(int aLock, const std::string& aTarget) {
  return ::ftruncate(aLock, 0) == 0 &&
         ::pwrite(aLock, aTarget.data(), aTarget.size(), 0) == static_cast<ssize_t>(aTarget.size());
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
  if (KrResult taken = TakeLock(folder / ("." + name + ".lock"), lock); !taken.IsOK())
    return taken;
  RemoveStaleLink(folder / name, lock.Get());
  const bool isNoted = NoteTarget(lock.Get(), aTarget);
  const int failure = errno;
  // From here on the lock's file is removed with the object; the link only if it is ours.
  std::unique_ptr<PortLink> link(
      new PortLink(folder / name, folder / ("." + name + ".lock"), aTarget, std::move(lock)));
  if (!isNoted)
    return MakeFailure("Writing " + link->mLockPath.string(), failure);
  if (const std::filesystem::path taken = FindTaken(folder, aNumber); !taken.empty())
    return {KrResult::Code::WrongState, taken.string() + " is there already. Remove it, or choose another number."};
  std::filesystem::create_symlink(aTarget, link->mPath, error);
  if (error)
    return error.value() == EEXIST ? KrResult(KrResult::Code::WrongState, link->mPath.string() + " is there already.")
                                   : MakeFailure("Linking " + link->mPath.string(), error.value());
  aLink = std::move(link);
  return {};
}

PortLink::~PortLink() {
  std::error_code error; // What cannot be removed is found as a stale one.
  if (std::filesystem::read_symlink(mPath, error) == mTarget && !error)
    std::filesystem::remove(mPath, error);
  std::filesystem::remove(mLockPath, error);
}

} // namespace krserial
