#pragma once
// Turns Ctrl-C and a request to terminate into a question that a loop can ask.

namespace krapps {

/// While it lives, SIGINT and SIGTERM set a flag instead of ending the process.
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
