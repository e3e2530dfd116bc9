#pragma once
// What sits at the other end of a serial port: socat, a program of others, behind a pseudo-terminal that it makes.

#include <sys/types.h>

#include <cstddef>
#include <string>
#include <thread>

namespace krtest {

/// A running socat. What does not work throws.
///
/// Thread: any, one at a time.
class SocatLine {
public:
  /// Makes the pseudo-terminal under a path, and holds it open, so that it outlasts the port's closing. What comes from
  /// it goes to Await, what Send takes into it.
  explicit SocatLine(const std::string& aPath);
  ~SocatLine();
  SocatLine(const SocatLine&) = delete;
  SocatLine& operator=(const SocatLine&) = delete;

  /// Gives it bytes to send, and returns at once: they go as the line takes them. After those of the call before.
  void Send(std::string aBytes);
  /// All that has come since it was made, once there are so many bytes; less when they do not come within a generous
  /// limit.
  const std::string& Await(std::size_t aSize);

private:
  void Start(const std::string& aPath);
  void Hold(const std::string& aPath);

  pid_t mProcess = -1;
  int mInput = -1;  // What it reads.
  int mOutput = -1; // What it writes.
  int mHolder = -1;
  std::string mReceived;
  std::jthread mSender; // Last, so that it ends before what it uses.
};

} // namespace krtest
