#include "stopsignal.h"

#include <atomic>

namespace krapps {

namespace {

std::atomic<bool> gRaised = false;
static_assert(std::atomic<bool>::is_always_lock_free, "A signal handler may touch lock-free atomics alone.");

} // namespace

StopSignal::StopSignal() {
  gRaised = false;
  struct sigaction action = {};
  action.sa_handler = [](int) { gRaised = true; };
  action.sa_flags = SA_RESTART;
  for (std::size_t i = 0; i < kSignals.size(); ++i)
    sigaction(kSignals[i], &action, &mFormerActions[i]);
}

StopSignal::~StopSignal() {
  for (std::size_t i = 0; i < kSignals.size(); ++i)
    sigaction(kSignals[i], &mFormerActions[i], nullptr);
}

bool StopSignal::IsRaised() const {
  return gRaised;
}

} // namespace krapps
