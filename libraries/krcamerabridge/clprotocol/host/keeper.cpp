#include "clprotocol/host/keeper.h"

#include <dirent.h>
#include <fcntl.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/signalfd.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <vector>

namespace krcamerabridge {

namespace {

constexpr std::chrono::milliseconds kMostEnding{1500};
constexpr int kEndingStepMs = 10;
constexpr int kFailed = 1;

// The parent of a process, 0 where it is not known.
pid_t GetParent(const char* aProcess) {
  std::array<char, 32> path;
  std::array<char, 512> text{};
  std::snprintf(path.data(), path.size(), "/proc/%.16s/stat", aProcess);
  const int file = open(path.data(), O_RDONLY | O_CLOEXEC);
  if (file < 0)
    return 0;
  const ssize_t size = read(file, text.data(), text.size() - 1);
  close(file);
  // "number (name) state parent": a name may have brackets, too.
  const char* const name = size > 0 ? std::strrchr(text.data(), ')') : nullptr;
  int parent = 0;
  return name != nullptr && std::sscanf(name, ") %*c %d", &parent) == 1 ? parent : 0;
}

// Only this process can wait for its children: their numbers stay theirs until then.
std::vector<pid_t> ListChildren() {
  std::vector<pid_t> children;
  const std::unique_ptr<DIR, int (*)(DIR*)> processes(opendir("/proc"), closedir);
  while (const dirent* const entry = processes ? readdir(processes.get()) : nullptr) {
    const pid_t id = std::atoi(entry->d_name);
    if (id > 0 && GetParent(entry->d_name) == getpid())
      children.push_back(id);
  }
  return children;
}

class Keeper {
public:
  Keeper(pid_t aDriver, int aSocket, int aSignals) : mDriver(aDriver), mSocket(aSocket), mSignals(aSignals) {}

  // Until the driver's process has ended, or is not wanted any more.
  void Await() {
    bool isWanted = true;
    while (isWanted && !mHasEnded) {
      std::array<pollfd, 2> ready = {pollfd{.fd = mSocket, .events = 0, .revents = 0},
                                     pollfd{.fd = mSignals, .events = POLLIN, .revents = 0}};
      static_cast<void>(poll(ready.data(), ready.size(), -1));
      isWanted = ready[0].revents == 0 && !TakeSignals();
      static_cast<void>(Reap());
    }
  }

  // Each child that ends leaves its own children to this process, so that all come to be reached.
  void EndAll() {
    const auto until = std::chrono::steady_clock::now() + kMostEnding;
    if (!mHasEnded)
      static_cast<void>(kill(mDriver, SIGKILL));
    while (Reap() && std::chrono::steady_clock::now() < until) {
      for (const pid_t child : ListChildren())
        static_cast<void>(kill(child, SIGKILL));
      pollfd ended{.fd = mSignals, .events = POLLIN, .revents = 0};
      static_cast<void>(poll(&ended, 1, kEndingStepMs));
      static_cast<void>(TakeSignals());
    }
  }

  [[noreturn]] void EndLikeTheDriver() const {
    if (mHasEnded && WIFSIGNALED(mStatus)) {
      sigset_t none;
      sigemptyset(&none);
      static_cast<void>(std::signal(WTERMSIG(mStatus), SIG_DFL));
      static_cast<void>(sigprocmask(SIG_SETMASK, &none, nullptr));
      static_cast<void>(raise(WTERMSIG(mStatus)));
    }
    _exit(mHasEnded && WIFEXITED(mStatus) ? WEXITSTATUS(mStatus) : kFailed);
  }

private:
  // Whether somebody wants this process to end.
  bool TakeSignals() const {
    signalfd_siginfo signal{};
    bool isToEnd = false;
    while (read(mSignals, &signal, sizeof signal) == static_cast<ssize_t>(sizeof signal))
      isToEnd = isToEnd || signal.ssi_signo != SIGCHLD;
    return isToEnd;
  }

  // Takes the children that have ended; false when there are no others.
  bool Reap() {
    int status = 0;
    pid_t id = 0;
    while ((id = waitpid(-1, &status, WNOHANG)) > 0) {
      if (id != mDriver)
        continue;
      mHasEnded = true;
      mStatus = status;
    }
    return id == 0 || errno != ECHILD;
  }

  const pid_t mDriver;
  const int mSocket;
  const int mSignals;
  bool mHasEnded = false; // The driver's process.
  int mStatus = 0;
};

} // namespace

void RunKept(int aSocket) {
  sigset_t heard;
  sigset_t former;
  sigemptyset(&heard);
  for (const int signal : {SIGCHLD, SIGHUP, SIGINT, SIGTERM})
    sigaddset(&heard, signal);
  static_cast<void>(sigprocmask(SIG_BLOCK, &heard, &former));
  static_cast<void>(prctl(PR_SET_CHILD_SUBREAPER, 1));
  const pid_t keeper = getpid();
  const pid_t driver = fork();
  if (driver == 0) {
    // A keeper that was killed takes the driver along, and a driver that ends its group does not end the keeper.
    static_cast<void>(prctl(PR_SET_PDEATHSIG, SIGKILL));
    if (getppid() != keeper)
      _exit(kFailed);
    static_cast<void>(setpgid(0, 0));
    static_cast<void>(sigprocmask(SIG_SETMASK, &former, nullptr));
    return;
  }
  const int signals = signalfd(-1, &heard, SFD_NONBLOCK | SFD_CLOEXEC);
  if (driver < 0 || signals < 0)
    _exit(kFailed);
  Keeper self(driver, aSocket, signals);
  self.Await();
  self.EndAll();
  self.EndLikeTheDriver();
}

} // namespace krcamerabridge
