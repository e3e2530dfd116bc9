#include "krdevice/krdeviceend.h"

#include "krbase/krlogger.h"
#include "opendevices.h"

#include <atomic>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdint>
#include <cstdlib>
#include <future>
#include <mutex>
#include <system_error>
#include <thread>
#include <utility>

#include <pthread.h>
#include <sys/eventfd.h>
#include <unistd.h>

namespace {

// Every signal that ends a process by default and is no fault of the program's own. The thread that wrote to a closed
// pipe goes on with EPIPE meanwhile.
constexpr int kSignals[] = {SIGINT, SIGTERM, SIGHUP, SIGQUIT, SIGPIPE, SIGALRM, SIGUSR1, SIGUSR2};
constexpr std::chrono::seconds kLimit{3};
constexpr int kEndTries = 100;
constexpr int kSignalExitBase = 128; // As a shell reports an end by a signal.

// What the signal handler sees.
std::atomic<pid_t> gProcess = 0; // The process that the descriptor and its thread belong to.
std::atomic<int> gWakeDescriptor = -1;
std::atomic<int> gSignal = 0; // The first that was taken.
static_assert(std::atomic<pid_t>::is_always_lock_free && std::atomic<int>::is_always_lock_free,
              "A signal handler may touch lock-free atomics alone.");

// Ends the process as the signal would have. Async-signal-safe. Another thread may change the action in between, and
// the first process of a container does not die of a default action: the end comes all the same.
[[noreturn]] void EndBySignal(int aSignal) {
  for (int tries = 0; tries < kEndTries; ++tries) {
    struct sigaction action = {};
    action.sa_handler = SIG_DFL;
    sigaction(aSignal, &action, nullptr);
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, aSignal);
    pthread_sigmask(SIG_UNBLOCK, &signals, nullptr);
    raise(aSignal);
  }
  _exit(kSignalExitBase + aSignal);
}

void OnSignal(int aSignal) {
  const int error = errno;
  if (getpid() != gProcess) {
    // A child that was forked past AfterForkInChild shares the parent's descriptor, not its devices.
    EndBySignal(aSignal);
  } else {
    int none = 0;
    gSignal.compare_exchange_strong(none, aSignal);
    const std::uint64_t one = 1;
    // It fails only when the count is full, and then the thread is awake.
    [[maybe_unused]] const ssize_t written = write(gWakeDescriptor, &one, sizeof one);
  }
  errno = error;
}

std::mutex gPreparation; // Guards the preparation, which is done once in a process, and the taking of signals.

void BeforeFork() {
  gPreparation.lock();
}

void AfterForkInParent() {
  gPreparation.unlock();
}

// Signals do in the child what they did before the parent took them.
void AfterForkInChild() {
  gPreparation.unlock();
  for (const int signal : kSignals) {
    struct sigaction action = {};
    if (sigaction(signal, nullptr, &action) != 0 || action.sa_handler != OnSignal)
      continue;
    action = {};
    action.sa_handler = SIG_DFL;
    sigaction(signal, &action, nullptr);
  }
  gProcess = 0;
  close(gWakeDescriptor.exchange(-1));
}

void GiveBackAll() {
  if (!krdevice::OpenDevices::Get().GiveBackAll(kLimit))
    KrLogger("KrDevice")
        .Log(KrLogLevel::Warning, {"KrGiveBackDevicesAtEnd", "krdeviceend"},
             "The process ends before all devices gave their control back; it ends there with their heartbeat.");
}

void OnExit() {
  if (getpid() == gProcess)
    GiveBackAll();
}

void AwaitSignal(int aDescriptor) {
  std::uint64_t count = 0;
  while (read(aDescriptor, &count, sizeof count) < 0) {
    if (errno != EINTR)
      return;
  }
  GiveBackAll();
  EndBySignal(gSignal);
}

KrResult Refuse(int aError) {
  return {KrResult::Code::SystemError, "Preparing to give devices back at the end of the process: " +
                                           KrString(std::generic_category().message(aError)) +
                                           ". Close every device before the end instead."};
}

// The thread takes no signals: they belong to the application's threads. It is awaited, so that whoever forks next does
// not find the process in the middle of its start.
KrResult StartThread(int aDescriptor) {
  sigset_t all;
  sigset_t former;
  sigfillset(&all);
  pthread_sigmask(SIG_SETMASK, &all, &former);
  KrResult result;
  try {
    std::promise<void> started;
    std::future<void> isStarted = started.get_future();
    std::thread([aDescriptor, started = std::move(started)]() mutable {
      started.set_value();
      AwaitSignal(aDescriptor);
    }).detach();
    isStarted.wait();
  } catch (const std::system_error& error) {
    result = Refuse(error.code().value());
  }
  pthread_sigmask(SIG_SETMASK, &former, nullptr);
  return result;
}

KrResult Prepare() {
  // Once for the process and the children that it forks.
  static const bool isWatched = std::atexit(OnExit) == 0 && std::at_quick_exit(OnExit) == 0 &&
                                pthread_atfork(BeforeFork, AfterForkInParent, AfterForkInChild) == 0;
  if (!isWatched)
    return Refuse(ENOMEM);
  const int descriptor = eventfd(0, EFD_CLOEXEC);
  if (descriptor < 0)
    return Refuse(errno);
  if (KrResult started = StartThread(descriptor); !started.IsOK()) {
    close(descriptor);
    return started;
  }
  gSignal = 0;
  gWakeDescriptor = descriptor;
  gProcess = getpid();
  return {};
}

void TakeDefaultSignals() {
  for (const int signal : kSignals) {
    if (gSignal != 0)
      return; // The process ends already, by a signal that has its default action again.
    struct sigaction former = {};
    if (sigaction(signal, nullptr, &former) != 0 || former.sa_handler != SIG_DFL)
      continue;
    struct sigaction action = {};
    action.sa_handler = OnSignal;
    action.sa_flags = SA_RESTART;
    sigaction(signal, &action, nullptr);
  }
}

} // namespace

KrResult KrGiveBackDevicesAtEnd() {
  const std::lock_guard lock(gPreparation);
  if (gProcess != getpid()) {
    if (KrResult prepared = Prepare(); !prepared.IsOK())
      return prepared;
  }
  TakeDefaultSignals();
  return {};
}
