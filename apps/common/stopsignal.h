#pragma once
// Turns Ctrl-C, a request to terminate and the end of the terminal into a question that a loop can ask.

#include <array>
#include <csignal>
#include <cstddef>

namespace krapps {

/// While it lives, SIGINT, SIGTERM and SIGHUP set a flag instead of what they did before, which they do again
/// afterwards.
///
/// Thread: construction and destruction on one thread, one object at a time; IsRaised from any.
class StopSignal {
public:
  StopSignal();
  ~StopSignal();
  StopSignal(const StopSignal&) = delete;
  StopSignal& operator=(const StopSignal&) = delete;

  bool IsRaised() const;

private:
  static constexpr std::array<int, 3> kSignals = {SIGINT, SIGTERM, SIGHUP};

  std::array<struct sigaction, kSignals.size()> mFormerActions;
};

} // namespace krapps
