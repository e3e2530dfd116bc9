#include "krbase/krclsockets.h"

#include "cldirectory.h"
#include "clname.h"
#include "clportfiles.h"
#include "krbase/lockpatience.h"

#include <algorithm>
#include <cerrno>
#include <string>
#include <utility>

#include <fcntl.h>
#include <poll.h>
#include <sys/file.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/time.h>
#include <unistd.h>

namespace {

using namespace krbase;

constexpr mode_t kOwnerOnly = 0600;
constexpr int kBacklog = 16;
constexpr std::uint32_t kMostPorts = 1000; // More are a fault of somebody's.
constexpr const char* kPublish = "Publishing a Camera Link port";
constexpr const char* kConnect = "Opening a Camera Link port";

FileDescriptor MakeSocket(int aFlags) {
  return FileDescriptor(::socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC | aFlags, 0));
}

bool IsSameFile(int aDescriptor, int aDirectory, const std::string& aName) {
  struct stat own = {};
  struct stat named = {};
  return ::fstat(aDescriptor, &own) == 0 && ::fstatat(aDirectory, aName.c_str(), &named, AT_SYMLINK_NOFOLLOW) == 0 &&
         own.st_dev == named.st_dev && own.st_ino == named.st_ino;
}

// Whether the other sends no more: all that it sent is there then.
bool HasEnded(int aSocket) {
  pollfd asked{.fd = aSocket, .events = POLLRDHUP, .revents = 0};
  return ::poll(&asked, 1, 0) > 0 && (asked.revents & (POLLRDHUP | POLLHUP)) != 0;
}

} // namespace

struct KrCLPublication::Body {
  ~Body();

  KrResult MakeLock(const std::string& aName);
  KrResult MakeListener();
  KrResult Show();

  KrString name;
  std::uint32_t number = 0;
  FileDescriptor directory;
  FileDescriptor lock; // Locked as long as it is open.
  FileDescriptor listener;
  bool isShown = false;
};

KrCLPublication::Body::~Body() {
  if (!lock.IsOpen())
    return;
  // A user may have emptied the directory meanwhile, and another port may have the number.
  const std::string file = isShown ? MakeCLLockName(number) : MakeCLNewName(number);
  if (!IsSameFile(lock.Get(), directory.Get(), file))
    return;
  ::unlinkat(directory.Get(), MakeCLSocketName(number).c_str(), 0);
  ::unlinkat(directory.Get(), file.c_str(), 0);
}

KrResult KrCLPublication::Body::MakeLock(const std::string& aName) {
  const std::string file = MakeCLNewName(number);
  ::unlinkat(directory.Get(), file.c_str(), 0); // Of a process that died over it.
  lock = FileDescriptor(
      ::openat(directory.Get(), file.c_str(), O_RDWR | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, kOwnerOnly));
  if (!lock.IsOpen() || ::flock(lock.Get(), LOCK_EX | LOCK_NB) != 0)
    return MakeCLSystemError(kPublish, errno);
  if (::write(lock.Get(), aName.data(), aName.size()) != static_cast<ssize_t>(aName.size()))
    return {KrResult::Code::SystemError, std::string(kPublish) + " failed: its name could not be written."};
  name = aName;
  return {};
}

KrResult KrCLPublication::Body::MakeListener() {
  const std::string file = MakeCLSocketName(number);
  ::unlinkat(directory.Get(), file.c_str(), 0);
  const sockaddr_un address = MakeCLAddress(directory.Get(), number);
  listener = MakeSocket(SOCK_NONBLOCK);
  const bool isMade =
      listener.IsOpen() && ::bind(listener.Get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0 &&
      ::fchmodat(directory.Get(), file.c_str(), kOwnerOnly, 0) == 0 && ::listen(listener.Get(), kBacklog) == 0;
  return isMade ? KrResult() : MakeCLSystemError(kPublish, errno);
}

KrResult KrCLPublication::Body::Show() {
  if (::renameat(directory.Get(), MakeCLNewName(number).c_str(), directory.Get(), MakeCLLockName(number).c_str()) != 0)
    return MakeCLSystemError(kPublish, errno);
  isShown = true;
  return {};
}

KrCLPublication::KrCLPublication(std::unique_ptr<Body> aBody) : mBody(std::move(aBody)) {}

KrCLPublication::~KrCLPublication() = default;

KrResult KrCLPublication::Make(const KrString& aName, std::unique_ptr<KrCLPublication>& aPublication) {
  const std::string name = CleanCLName(aName.ToUtf8());
  if (name.empty())
    return {KrResult::Code::InvalidInput, "A Camera Link port needs a name that can be read."};
  auto body = std::make_unique<Body>();
  if (KrResult opened = OpenCLDirectory(true, body->directory); !opened.IsOK())
    return opened;
  const int directory = body->directory.Get();
  static LockPatience patience(std::chrono::milliseconds(1000));
  FileDescriptor directoryLock;
  if (const KrResult locked = LockCLDirectory(directory, patience.GetLimit(), directoryLock); !locked.IsOK()) {
    if (locked == KrResult::Code::Busy)
      patience.Note(false);
    return locked;
  }
  patience.Note(true);
  CLPortFiles files;
  if (KrResult found = FindCLPorts(directory, files); !found.IsOK())
    return found;
  RemoveDeadCLPorts(directory, files.dead);

  std::vector<std::string> taken;
  for (const KrCLPort& port : files.living)
    taken.push_back(port.name.ToUtf8());
  const auto isFree = [&](std::uint32_t aNumber) {
    return ::faccessat(directory, MakeCLLockName(aNumber).c_str(), F_OK, AT_SYMLINK_NOFOLLOW) != 0;
  };
  body->number = 1;
  while (body->number <= kMostPorts && !isFree(body->number))
    ++body->number;
  if (body->number > kMostPorts)
    return {KrResult::Code::Busy, std::string(kPublish) + " failed: there are too many already."};
  KrResult result = body->MakeLock(MakeUniqueCLName(name, taken));
  if (result.IsOK())
    result = body->MakeListener();
  if (result.IsOK())
    result = body->Show();
  if (result.IsOK())
    aPublication.reset(new KrCLPublication(std::move(body)));
  return result;
}

const KrString& KrCLPublication::GetName() const {
  return mBody->name;
}

int KrCLPublication::GetSocket() const {
  return mBody->listener.Get();
}

KrResult KrListCLPorts(std::vector<KrCLPort>& aPorts) {
  FileDescriptor directory;
  CLPortFiles files;
  const KrResult opened = OpenCLDirectory(false, directory);
  if (!opened.IsOK() && !(opened == KrResult::Code::NotFound))
    return opened;
  if (opened.IsOK()) {
    if (KrResult found = FindCLPorts(directory.Get(), files); !found.IsOK())
      return found;
    // Whoever publishes at this moment removes them, too.
    if (FileDescriptor lock; !files.dead.empty() && LockCLDirectory(directory.Get(), {}, lock).IsOK())
      RemoveDeadCLPorts(directory.Get(), files.dead);
  }
  std::sort(files.living.begin(), files.living.end(),
            [](const KrCLPort& aLeft, const KrCLPort& aRight) { return aLeft.name < aRight.name; });
  aPorts = std::move(files.living);
  return {};
}

KrResult KrConnectCLPort(const KrCLPort& aPort, std::chrono::milliseconds aLimit, FileDescriptor& aSocket) {
  FileDescriptor directory;
  if (KrResult opened = OpenCLDirectory(false, directory); !opened.IsOK())
    return opened;
  FileDescriptor socket = MakeSocket(0);
  const timeval limit = {.tv_sec = aLimit.count() / 1000, .tv_usec = aLimit.count() % 1000 * 1000};
  if (!socket.IsOpen() || ::setsockopt(socket.Get(), SOL_SOCKET, SO_SNDTIMEO, &limit, sizeof limit) != 0)
    return MakeCLSystemError(kConnect, errno);
  const sockaddr_un address = MakeCLAddress(directory.Get(), aPort.number);
  if (::connect(socket.Get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) {
    if (errno == ENOENT || errno == ECONNREFUSED)
      return {KrResult::Code::NotFound, "The Camera Link port \"" + aPort.name + "\" is not published any more."};
    if (errno == EAGAIN)
      return {KrResult::Code::TimeLimitExceeded, "The Camera Link port \"" + aPort.name + "\" did not answer."};
    return MakeCLSystemError(kConnect, errno);
  }
  const int flags = ::fcntl(socket.Get(), F_GETFL);
  if (flags < 0 || ::fcntl(socket.Get(), F_SETFL, flags | O_NONBLOCK) != 0)
    return MakeCLSystemError(kConnect, errno);
  aSocket = std::move(socket);
  return {};
}

std::ptrdiff_t KrReceiveCLPacket(int aSocket, std::uint8_t* aBytes, std::size_t aSize) {
  while (true) {
    const bool hasEnded = HasEnded(aSocket);
    const std::ptrdiff_t there = ::recv(aSocket, aBytes, aSize, MSG_DONTWAIT | MSG_TRUNC | MSG_PEEK);
    if (there > 0)
      return ::recv(aSocket, aBytes, aSize, MSG_DONTWAIT | MSG_TRUNC);
    // The kernel looks for packets first and for the end then: both may come between the two.
    const bool isEndTooEarly = there == 0 && !hasEnded && HasEnded(aSocket);
    // That the other goes without having read all is told once; what it sent before is behind that.
    const bool isReset = there < 0 && errno == ECONNRESET;
    if (!isEndTooEarly && !isReset)
      return there;
  }
}

bool KrIsOwnUser(int aSocket) {
  ucred peer = {};
  socklen_t length = sizeof peer;
  return ::getsockopt(aSocket, SOL_SOCKET, SO_PEERCRED, &peer, &length) == 0 && peer.uid == ::geteuid();
}
