#include "stopsignal.h"

#include <array>
#include <atomic>
#include <csignal>
#include <cstddef>

namespace krapps {

namespace {

constexpr std::array kSignals = {SIGINT, SIGTERM, SIGHUP};

// What the signal handler sees. The actions are written before it is installed.
std::array<struct sigaction, kSignals.size()> gFormerActions;
std::atomic<int> gSignal = 0;
static_assert(std::atomic<int>::is_always_lock_free, "A signal handler may touch lock-free atomics alone.");

// Async-signal-safe.
void RestoreFormerActions() {
  for (std::size_t i = 0; i < kSignals.size(); ++i)
    sigaction(kSignals[i], &gFormerActions[i], nullptr);
}

void OnSignal(int aSignal) {
  gSignal = aSignal;
  RestoreFormerActions();
}

} // namespace

StopSignal::StopSignal() {
  gSignal = 0;
  struct sigaction action = {};
  action.sa_handler = OnSignal;
  action.sa_flags = SA_RESTART;
  for (std::size_t i = 0; i < kSignals.size(); ++i)
    sigaction(kSignals[i], nullptr, &gFormerActions[i]);
  for (std::size_t i = 0; i < kSignals.size(); ++i) {
    if (gFormerActions[i].sa_handler != SIG_IGN)
      sigaction(kSignals[i], &action, nullptr);
  }
}

StopSignal::~StopSignal() {
  RestoreFormerActions();
}

int StopSignal::GetSignal() const {
  return gSignal;
}

int StopSignal::GetExitCode() const {
  constexpr int kSignalBase = 128;
  return kSignalBase + GetSignal();
}

} // namespace krapps
