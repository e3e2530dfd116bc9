#pragma once
// All that runs while a serial bridge is started: both sides, what moves bytes between them, and the speed.

#include "bridge/bridgecounters.h"
#include "bridge/bridgestatus.h"
#include "bridge/deviceline.h"
#include "bridge/ihostend.h"
#include "bridge/portspeed.h"
#include "bridge/pump.h"
#include "krserial/krserialbridge.h"

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <stop_token>

namespace krserial {

/// Thread: construction, Run and destruction on one at a time, and one that may wait; the rest from any.
/// Ownership: the end; borrows the adapter and the counters.
class BridgeLink {
public:
  BridgeLink(IKrDeviceAdapter& aAdapter, KrDeviceSerial aPort, BridgeCounters& aCounters);
  /// Ends everything: bytes at once, and then what waits for an access to the device that runs. The adapter is used no
  /// longer.
  ~BridgeLink();
  BridgeLink(const BridgeLink&) = delete;
  BridgeLink& operator=(const BridgeLink&) = delete;

  /// Begins to end everything, also a Run, which gives Aborted, and a Configure; does not wait. May outlive the link.
  std::stop_source GetStop() const { return mStop; }

  /// Opens the device's port, results as of KrDeviceSerialPort, asks for its speeds, prefers aBaudRate where there is
  /// one, also whenever the host's port is back, and starts. Once. Of kNoDeviceSerial nothing is opened, and no bytes
  /// are moved.
  KrResult Run(std::unique_ptr<IHostEnd> aEnd, const std::optional<std::uint32_t>& aBaudRate);

  /// Sets the host's port, and the device's port to its speed if it has that.
  KrResult Configure(const KrSerialPortConfiguration& aConfiguration);
  PortSpeed& GetSpeed() { return mSpeed; }
  const PortSpeed& GetSpeed() const { return mSpeed; }
  KrSerialBridgeState GetState() const;
  KrString GetStateText() const { return mStatus.GetText(); }

private:
  void PreferSpeed();

  const bool mHasPort;
  std::atomic<std::uint32_t> mBaudRate = 0; // The host's port's, as it was configured; 0 where it has none.
  BridgeStatus mStatus;
  PortSpeed mSpeed;
  std::stop_source mStop;
  using OnStop = std::stop_callback<std::function<void()>>;
  OnStop mEndQuestions{mStop.get_token(), [this] { mSpeed.RequestStop(); }};
  DeviceLine mLine;
  std::unique_ptr<IHostEnd> mEnd; // Until its destruction it may ask mSpeed for one.
  std::unique_ptr<Pump> mPump;
  std::optional<OnStop> mEndBytes;
};

} // namespace krserial
