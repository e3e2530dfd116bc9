#include "clprotocol/hostprocess.h"

#include "clprotocol/clidentifiers.h"
#include "clprotocol/installedfiles.h"
#include "krbase/krlogger.h"

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <span>
#include <utility>
#include <vector>

namespace krcamerabridge {

namespace {

using krbase::FileDescriptor;

constexpr int kFirstFree = 10; // Above those that the process gets.
constexpr int kChildsSocket = 3;
constexpr int kEndMs = 2000;
constexpr std::size_t kMostLoggedBytes = std::size_t{64} << 10;
constexpr std::size_t kMostLine = 1000;

KrResult TellSystem(const std::string& aWhat, int aError) {
  return {KrResult::Code::SystemError, aWhat + ": " + std::strerror(aError) + '.'};
}

// Moves a descriptor out of the way of those that the process gets.
FileDescriptor MoveUp(int aDescriptor) {
  FileDescriptor moved(fcntl(aDescriptor, F_DUPFD_CLOEXEC, kFirstFree));
  close(aDescriptor);
  return moved;
}

int GetRest(HostProcess::Clock::time_point aUntil) {
  const auto rest = std::chrono::ceil<std::chrono::milliseconds>(aUntil - HostProcess::Clock::now()).count();
  return static_cast<int>(std::clamp<std::int64_t>(rest, 0, INT32_MAX));
}

// What a program is started with, freed at the end.
class SpawnRules {
public:
  SpawnRules(int aSocket, int aPrinted) {
    posix_spawn_file_actions_init(&mActions);
    posix_spawn_file_actions_addopen(&mActions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_adddup2(&mActions, aPrinted, STDOUT_FILENO);
    posix_spawn_file_actions_adddup2(&mActions, aPrinted, STDERR_FILENO);
    posix_spawn_file_actions_adddup2(&mActions, aSocket, kChildsSocket);
    posix_spawn_file_actions_addclosefrom_np(&mActions, kChildsSocket + 1);

    posix_spawnattr_init(&mAttributes);
    sigset_t none;
    sigset_t all;
    sigemptyset(&none);
    sigfillset(&all);
    posix_spawnattr_setsigmask(&mAttributes, &none);
    posix_spawnattr_setsigdefault(&mAttributes, &all);
    posix_spawnattr_setpgroup(&mAttributes, 0);
    posix_spawnattr_setflags(&mAttributes, POSIX_SPAWN_SETPGROUP | POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETSIGMASK);
  }
  ~SpawnRules() {
    posix_spawnattr_destroy(&mAttributes);
    posix_spawn_file_actions_destroy(&mActions);
  }
  SpawnRules(const SpawnRules&) = delete;
  SpawnRules& operator=(const SpawnRules&) = delete;

  const posix_spawn_file_actions_t* GetActions() const { return &mActions; }
  const posix_spawnattr_t* GetAttributes() const { return &mAttributes; }

private:
  posix_spawn_file_actions_t mActions;
  posix_spawnattr_t mAttributes;
};

} // namespace

HostProcess::HostProcess(const std::string& aName, FileDescriptor aSocket, FileDescriptor aPrinted,
                         krbase::WakeEvent aStop)
    : mName(aName), mSocket(std::move(aSocket)), mPrinted(std::move(aPrinted)), mStop(std::move(aStop)) {}

HostProcess::~HostProcess() {
  Kill();
}

KrResult HostProcess::Start(const std::string& aName, std::unique_ptr<HostProcess>& aProcess) {
  const std::string attempt = "Starting the process of the CL Protocol driver " + aName;
  std::array<int, 2> sockets{};
  if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, sockets.data()) != 0)
    return TellSystem(attempt, errno);
  FileDescriptor own = MoveUp(sockets[0]);
  const FileDescriptor childs = MoveUp(sockets[1]);
  std::array<int, 2> pipes{};
  if (pipe2(pipes.data(), O_CLOEXEC) != 0)
    return TellSystem(attempt, errno);
  FileDescriptor printed = MoveUp(pipes[0]);
  const FileDescriptor printing = MoveUp(pipes[1]);
  krbase::WakeEvent stop;
  if (!own.IsOpen() || !childs.IsOpen() || !printed.IsOpen() || !printing.IsOpen() || !stop.IsOpen() ||
      fcntl(own.Get(), F_SETFL, O_NONBLOCK) != 0 || fcntl(printed.Get(), F_SETFL, O_NONBLOCK) != 0)
    return TellSystem(attempt, errno);

  std::unique_ptr<HostProcess> process(new HostProcess(aName, std::move(own), std::move(printed), std::move(stop)));
  if (KrResult result = process->Spawn(childs.Get(), printing.Get()); !result.IsOK())
    return result;
  aProcess = std::move(process);
  return {};
}

KrResult HostProcess::Spawn(int aSocket, int aPrinted) {
  const std::string program = FindCLHost();
  if (program.empty())
    return {KrResult::Code::SystemError, "The program krgui-clprotocol-host, which runs CL Protocol drivers, is not "
                                         "installed beside the library; KRGUI_CLPROTOCOL_HOST may name it."};
  const SpawnRules rules(aSocket, aPrinted);
  std::string argument = program;
  std::array<char*, 2> arguments = {argument.data(), nullptr};
  const int error =
      posix_spawn(&mID, program.c_str(), rules.GetActions(), rules.GetAttributes(), arguments.data(), environ);
  if (error == 0) {
    mProcess = FileDescriptor(static_cast<int>(syscall(SYS_pidfd_open, mID, 0)));
    return {};
  }
  mID = -1;
  return TellSystem("Starting " + program + ", which runs CL Protocol drivers", error);
}

HostProcess::Event HostProcess::Send(const WireFrame& aFrame, Clock::time_point aUntil, const std::stop_token& aStop) {
  const std::vector<std::uint8_t> bytes = MakeWireBytes(aFrame);
  for (std::size_t sent = 0; sent < bytes.size();) {
    const ssize_t count = send(mSocket.Get(), bytes.data() + sent, bytes.size() - sent, MSG_NOSIGNAL);
    if (count >= 0) {
      sent += static_cast<std::size_t>(count);
      continue;
    }
    if (errno != EAGAIN && errno != EINTR)
      return Event::Ended;
    if (const Event event = Await(POLLOUT, aUntil, aStop); event != Event::Frame)
      return event;
  }
  return Event::Frame;
}

HostProcess::Event HostProcess::Receive(WireFrame& aFrame, Clock::time_point aUntil, const std::stop_token& aStop) {
  for (;;) {
    if (std::optional<WireFrame> frame = mReader.Take()) {
      aFrame = std::move(*frame);
      return Event::Frame;
    }
    if (mReader.IsBroken())
      return Event::Broken;
    if (const Event event = Await(POLLIN, aUntil, aStop); event != Event::Frame)
      return event;
    if (const Event event = TakeReceived(); event != Event::Frame)
      return event;
  }
}

// Waits for the socket, and takes what is printed meanwhile, so that the driver does not wait for that.
HostProcess::Event HostProcess::Await(short aEvents, Clock::time_point aUntil, const std::stop_token& aStop) {
  mStop.Clear(); // What an earlier stop has left behind.
  const std::stop_callback signal(aStop, [this] { mStop.Signal(); });
  for (;;) {
    std::array<pollfd, 3> ready = {pollfd{.fd = mSocket.Get(), .events = aEvents, .revents = 0},
                                   pollfd{.fd = mStop.GetDescriptor(), .events = POLLIN, .revents = 0},
                                   pollfd{.fd = mPrinted.Get(), .events = POLLIN, .revents = 0}};
    const int rest = GetRest(aUntil);
    static_cast<void>(poll(ready.data(), ready.size(), rest));
    if (ready[2].revents != 0)
      TakePrinted();
    if (aStop.stop_requested())
      return Event::Stopped;
    if (ready[0].revents != 0)
      return Event::Frame;
    if (rest == 0)
      return Event::TimeOver;
  }
}

HostProcess::Event HostProcess::TakeReceived() {
  std::array<std::uint8_t, 65536> bytes;
  const ssize_t count = recv(mSocket.Get(), bytes.data(), bytes.size(), 0);
  if (count > 0)
    mReader.Add(std::span(bytes).first(static_cast<std::size_t>(count)));
  const bool isOpen = count > 0 || (count < 0 && (errno == EAGAIN || errno == EINTR));
  return isOpen ? Event::Frame : Event::Ended;
}

void HostProcess::TakePrinted() {
  std::array<char, 4096> bytes;
  const ssize_t count = read(mPrinted.Get(), bytes.data(), bytes.size());
  if (count == 0 || (count < 0 && errno != EAGAIN && errno != EINTR))
    mPrinted = FileDescriptor();
  for (const char byte : std::string_view(bytes.data(), static_cast<std::size_t>(std::max<ssize_t>(count, 0)))) {
    if (byte != '\n' && mLine.size() < kMostLine)
      mLine += byte;
    else if (byte == '\n')
      LogPrinted(std::exchange(mLine, {}));
  }
}

void HostProcess::LogPrinted(std::string_view aLine) {
  const std::string words = MakeCLWords(aLine);
  if (words.empty() || mLoggedBytes > kMostLoggedBytes)
    return;
  mLoggedBytes += words.size();
  const bool isLast = mLoggedBytes > kMostLoggedBytes;
  KrLogger("KrCameraBridge")
      .Log(KrLogLevel::Warning, {"HostProcess::LogPrinted", "hostprocess"},
           "The CL Protocol driver " + mName + " prints: " + words +
               (isLast ? " - What it prints from now on is left out." : ""));
}

void HostProcess::Reap() {
  pid_t reaped = 0;
  do {
    reaped = waitpid(mID, &mStatus, 0);
  } while (reaped < 0 && errno == EINTR);
  // Who ignores the ends of children is not told how they came.
  if (reaped < 0)
    mStatus = -1;
  mID = -1;
}

// Waits a moment for the end.
void HostProcess::AwaitEnd() const {
  const auto until = Clock::now() + std::chrono::milliseconds(kEndMs);
  pollfd ended{.fd = mProcess.Get(), .events = POLLIN, .revents = 0};
  while (mProcess.IsOpen() && poll(&ended, 1, GetRest(until)) < 0 && errno == EINTR) {
  }
}

// Once the socket is shut down the process ends what the driver has started, and then itself.
void HostProcess::Kill() {
  if (mID < 0)
    return;
  static_cast<void>(shutdown(mSocket.Get(), SHUT_RDWR));
  AwaitEnd();
  // Its number may be another's already where the ends of children are ignored.
  if (mProcess.IsOpen())
    static_cast<void>(syscall(SYS_pidfd_send_signal, mProcess.Get(), SIGKILL, nullptr, 0));
  else
    static_cast<void>(kill(mID, SIGKILL));
  Reap();
  // All that could print is gone: what is left ends.
  for (int i = 0; i < 64 && mPrinted.IsOpen(); ++i) {
    pollfd ready{.fd = mPrinted.Get(), .events = POLLIN, .revents = 0};
    if (poll(&ready, 1, 0) <= 0)
      break;
    TakePrinted();
  }
  LogPrinted(std::exchange(mLine, {}));
}

std::string HostProcess::Bury() {
  Kill();
  if (mStatus >= 0 && WIFSIGNALED(mStatus))
    return "was ended by signal " + std::to_string(WTERMSIG(mStatus)) + " (" + strsignal(WTERMSIG(mStatus)) + ")";
  if (mStatus >= 0 && WIFEXITED(mStatus))
    return "ended its process with exit code " + std::to_string(WEXITSTATUS(mStatus));
  return "ended its process";
}

} // namespace krcamerabridge
