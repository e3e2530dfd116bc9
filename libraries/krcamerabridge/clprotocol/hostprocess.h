#pragma once
// The process that a CL Protocol driver runs in, as the application sees it: started, spoken to, ended. What is said is
// left to CLDriver.

#include "clprotocol/driverwire.h"
#include "krbase/filedescriptor.h"
#include "krbase/krresult.h"
#include "krbase/wakeevent.h"

#include <sys/types.h>

#include <chrono>
#include <cstddef>
#include <memory>
#include <stop_token>
#include <string>
#include <string_view>

namespace krcamerabridge {

/// Thread: one at a time. Ownership: owns the process and all that the driver has started, whatever session that is in.
class HostProcess {
public:
  using Clock = std::chrono::steady_clock;
  enum class Event { Frame, TimeOver, Stopped, Ended, Broken };

  /// Starts one. What the driver prints goes to the log, up to a limit, under aName. SystemError where the program is
  /// missing or cannot be started.
  static KrResult Start(const std::string& aName, std::unique_ptr<HostProcess>& aProcess);
  /// Ends it.
  ~HostProcess();
  HostProcess(const HostProcess&) = delete;
  HostProcess& operator=(const HostProcess&) = delete;

  /// Sends a frame: Frame when it was, TimeOver, Stopped or Ended.
  Event Send(const WireFrame& aFrame, Clock::time_point aUntil, const std::stop_token& aStop);
  /// Waits for a frame of the process.
  Event Receive(WireFrame& aFrame, Clock::time_point aUntil, const std::stop_token& aStop);

  /// Ends it and waits for that.
  void Kill();
  /// Ends a process that has closed its socket, and says in words how it came to its end.
  std::string Bury();

private:
  HostProcess(const std::string& aName, krbase::FileDescriptor aSocket, krbase::FileDescriptor aPrinted,
              krbase::WakeEvent aStop);

  KrResult Spawn(int aSocket, int aPrinted);
  Event Await(short aEvents, Clock::time_point aUntil, const std::stop_token& aStop);
  Event TakeReceived();
  void TakePrinted();
  void LogPrinted(std::string_view aLine);
  void AwaitEnd() const;
  void Reap();

  const std::string mName;
  krbase::FileDescriptor mSocket;
  krbase::FileDescriptor mPrinted; // What the driver prints.
  krbase::WakeEvent mStop;         // Signalled by a stop.
  krbase::FileDescriptor mProcess; // Made ready by the end of the process.
  WireReader mReader{WireSide::Driver};
  std::string mLine; // Printed, and not ended yet.
  std::size_t mLoggedBytes = 0;
  pid_t mID = -1; // -1 once it was waited for.
  int mStatus = -1;
};

} // namespace krcamerabridge
