#pragma once
// Programs of others at a serial line: socat, behind a pseudo-terminal that it makes, or as a client of one that is
// there.

#include <sys/types.h>

#include <cstddef>
#include <string>
#include <string_view>
#include <thread>
#include <utility>

namespace krtest {

/// A running socat. What does not work throws.
///
/// Thread: any, one at a time.
class SocatProcess {
public:
  /// What comes from an address, as socat writes them, goes to Await, what Send takes into it.
  explicit SocatProcess(std::string aAddress);
  ~SocatProcess();
  SocatProcess(const SocatProcess&) = delete;
  SocatProcess& operator=(const SocatProcess&) = delete;

  /// Gives it bytes to send, and returns at once: they go as the line takes them. After those of the call before.
  void Send(std::string aBytes);
  /// All that has come since it was made, once there are so many bytes; less when they do not come within a generous
  /// limit.
  const std::string& Await(std::size_t aSize);
  /// All that has come since it was made, once it ends so; something else when that does not come within the limit.
  const std::string& AwaitEnd(std::string_view aEnd);
  /// Ends it where it stands, without a chance to do anything first. It takes nothing more to send.
  void Kill();

private:
  void ReadSome();
  void End(int aSignal);

  pid_t mProcess = -1;
  int mInput = -1;  // What it reads.
  int mOutput = -1; // What it writes.
  std::string mReceived;
  std::jthread mSender; // Last, so that it ends before what it uses.
};

/// What sits at the other end of a serial port: a pseudo-terminal that socat makes under a path. It is held open, so
/// that it outlasts the port's closing.
class SocatLine {
public:
  explicit SocatLine(const std::string& aPath);
  ~SocatLine();
  SocatLine(const SocatLine&) = delete;
  SocatLine& operator=(const SocatLine&) = delete;

  void Send(std::string aBytes) { mProcess.Send(std::move(aBytes)); }
  const std::string& Await(std::size_t aSize) { return mProcess.Await(aSize); }
  const std::string& AwaitEnd(std::string_view aEnd) { return mProcess.AwaitEnd(aEnd); }
  void Kill() { mProcess.Kill(); }

private:
  SocatProcess mProcess;
  int mHolder = -1;
};

} // namespace krtest
