#include "stopsignal.h"

#include <atomic>
#include <csignal>

namespace krapps {

namespace {

std::atomic<bool> gRaised = false;
static_assert(std::atomic<bool>::is_always_lock_free, "A signal handler may touch lock-free atomics alone.");

constexpr int kSignals[] = {SIGINT, SIGTERM, SIGHUP};

} // namespace

StopSignal::StopSignal() {
  gRaised = false;
  for (const int signal : kSignals)
    std::signal(signal, [](int) { gRaised = true; });
}

StopSignal::~StopSignal() {
  for (const int signal : kSignals)
    std::signal(signal, SIG_DFL);
}

bool StopSignal::IsRaised() const {
  return gRaised;
}

} // namespace krapps
