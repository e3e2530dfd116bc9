#include "watchdog.h"

#include <array>
#include <cstdio>
#include <cstdlib>
#include <execinfo.h>
#include <filesystem>
#include <fstream>
#include <pthread.h>
#include <signal.h>
#include <string>
#include <unistd.h>

namespace {

std::string ReadLine(const std::filesystem::path& aPath) {
  std::string line;
  std::getline(std::ifstream(aPath), line);
  return line;
}

/// On the thread that hangs: where it stands, then the end.
[[noreturn]] void WriteBacktrace(int) {
  std::array<void*, 64> frames{};
  const int count = ::backtrace(frames.data(), static_cast<int>(frames.size()));
  ::backtrace_symbols_fd(frames.data(), count, STDERR_FILENO);
  ::_exit(1);
}

} // namespace

Watchdog::Watchdog(std::chrono::seconds aLimit)
    : mLimit(aLimit), mWatched(::pthread_self()), mThread([this](const std::stop_token& aStop) { Run(aStop); }) {}

Watchdog::~Watchdog() {
  mThread.request_stop();
  mThread.join();
}

void Watchdog::Begin(const char* aStep) {
  const std::lock_guard lock(mMutex);
  mStep = aStep;
  mBegin = std::chrono::steady_clock::now();
  mBegan.notify_all();
}

const char* Watchdog::GetStep() const {
  const std::lock_guard lock(mMutex);
  return mStep;
}

void Watchdog::Run(const std::stop_token& aStop) {
  std::unique_lock lock(mMutex);
  while (!aStop.stop_requested()) {
    const auto begin = mBegin;
    const bool isLate = !mBegan.wait_until(lock, aStop, begin + mLimit, [&] { return mBegin != begin; });
    if (isLate && !aStop.stop_requested())
      ReportHang(mStep);
  }
}

void Watchdog::ReportHang(const char* aStep) const {
  std::fprintf(stderr, "soak: hangs for %lld s in the step: %s\n", static_cast<long long>(mLimit.count()), aStep);
  for (const auto& task : std::filesystem::directory_iterator("/proc/self/task"))
    std::fprintf(stderr, "  thread %s: %s, waits in %s\n", task.path().filename().c_str(),
                 ReadLine(task.path() / "comm").c_str(), ReadLine(task.path() / "wchan").c_str());
  struct sigaction action = {};
  action.sa_handler = WriteBacktrace;
  ::sigaction(SIGUSR2, &action, nullptr);
  ::pthread_kill(mWatched, SIGUSR2);
  std::this_thread::sleep_for(std::chrono::seconds(10)); // The other thread ends the process before.
  std::_Exit(1);
}
