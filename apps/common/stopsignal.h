#pragma once
// Turns Ctrl-C, a request to terminate and the end of the terminal into a question that a loop can ask.

namespace krapps {

/// While it lives, SIGINT, SIGTERM and SIGHUP set a flag instead of ending the process.
///
/// Thread: construction and destruction on one thread, one object at a time; IsRaised from any.
class StopSignal {
public:
  StopSignal();
  ~StopSignal();
  StopSignal(const StopSignal&) = delete;
  StopSignal& operator=(const StopSignal&) = delete;

  bool IsRaised() const;
};

} // namespace krapps
