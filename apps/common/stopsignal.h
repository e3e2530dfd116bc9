#pragma once
// Turns Ctrl-C, a request to terminate and the end of the terminal into a question that a loop can ask.

namespace krapps {

/// While it lives, the first SIGINT, SIGTERM or SIGHUP sets a flag instead of what it did before; a second one, and any
/// after the object's end, does that again, so that an impatient user need not wait. A signal that was ignored, as
/// nohup has it, stays ignored.
///
/// Thread: construction and destruction on one thread, one object at a time; the questions from any.
class StopSignal {
public:
  StopSignal();
  ~StopSignal();
  StopSignal(const StopSignal&) = delete;
  StopSignal& operator=(const StopSignal&) = delete;

  bool IsRaised() const { return GetSignal() != 0; }
  /// The signal that came, or 0.
  int GetSignal() const;
  /// The exit code of a program that the signal ended before it was done, as shells have it for those that it kills.
  int GetExitCode() const;
};

} // namespace krapps
