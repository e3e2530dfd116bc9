#pragma once
// Makes the calls that the application asks for, of the driver that this process has loaded. Nothing that the driver
// says is trusted; what it does to the memory of this process harms nobody else.

#include "clprotocol/driverwire.h"
#include "clprotocol/host/driverlibrary.h"
#include "clprotocol/host/hostserial.h"

#include <mutex>
#include <thread>
#include <vector>

namespace krcamerabridge {

/// Thread: one at a time, but for StopProbe. Ownership: borrows the channel.
class DriverCalls {
public:
  explicit DriverCalls(HostChannel& aChannel, CLLogger aLogger) : mSerial(aChannel), mLogger(aLogger) {}

  /// Makes a call, which takes as long as the driver does; what is to be answered.
  WireFrame Make(const WireFrame& aCall);
  /// Has the driver end a probe, where it knows how. Thread: any; does not wait.
  void StopProbe();

private:
  WireFrame Load(const WireFrame& aCall);
  WireFrame Probe(const WireFrame& aCall);
  WireFrame GetXMLDescription(const WireFrame& aCall);
  WireFrame ReadRegister(const WireFrame& aCall);
  WireFrame WriteRegister(const WireFrame& aCall);
  WireFrame GetParam(const WireFrame& aCall);
  WireFrame SetParam(const WireFrame& aCall);
  WireFrame Close();

  HostSerial mSerial;
  const CLLogger mLogger;
  DriverLibrary mLibrary;
  bool mIsLoaded = false;

  std::mutex mStopMutex;            // Guards what follows.
  clpSetParam_t mStopper = nullptr; // Set while the driver can stop a probe.
  std::vector<std::jthread> mStops; // Joined before the driver is closed.
};

} // namespace krcamerabridge
