#pragma once
// The speed of a bridge's device port: looked at every second, so that nobody has to wait for it, and set when the
// other end asks. How a device says it is left to KrDeviceSerialSpeed.

#include "bridge/bridgestatus.h"
#include "bridge/ihostend.h"
#include "krserial/krdeviceserialspeed.h"

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <functional>
#include <mutex>
#include <stop_token>
#include <thread>
#include <vector>

namespace krserial {

/// Thread: any, but for AskSupported, Start and Stop, which come one at a time.
/// Ownership: borrows the adapter and the status.
class PortSpeed {
public:
  PortSpeed(IKrDeviceAdapter& aAdapter, KrDeviceSerial aPort, BridgeStatus& aStatus)
      : mSpeed(aAdapter, aPort), mPort(aPort), mStatus(aStatus) {}
  ~PortSpeed() { Stop(); }
  PortSpeed(const PortSpeed&) = delete;
  PortSpeed& operator=(const PortSpeed&) = delete;

  /// Asks which speeds there are; what does not answer has none. Before Start.
  void AskSupported();
  /// Looks at the speed, at once and every second, and tells of each change; on a thread of its own but for the first.
  void Start(std::function<void(const DevicePortSpeed&)> aTell);
  /// No question to the device begins from now on, and none goes on behind the access that runs; Request gives Aborted.
  /// Does not wait.
  void RequestStop() { mStop.request_stop(); }
  /// Ends all, and waits for an access that runs.
  void Stop();

  const std::vector<std::uint32_t>& GetSupported() const { return mSupported; }
  /// What the device said last; where it cannot say, the hard-coded speed. Does not wait.
  std::uint32_t Get() const;
  void SetHardCoded(std::uint32_t aBaudRate);

  /// Sets the device's port. NotSupported for a speed that it does not have, which the status then notes; where the
  /// device cannot be set at all, the hard-coded speed is had already, and nothing is noted. With 0 nothing is set, and
  /// the note ends.
  KrResult Request(std::uint32_t aBaudRate);
  /// The same, where it does not matter whether the port has the speed.
  void Prefer(std::uint32_t aBaudRate);

private:
  void Run();
  void Look();
  void LookSoon();

  const KrDeviceSerialSpeed mSpeed;
  const KrDeviceSerial mPort;
  BridgeStatus& mStatus;
  std::stop_source mStop;
  std::vector<std::uint32_t> mSupported; // Constant once the thread runs.
  std::function<void(const DevicePortSpeed&)> mTell;
  std::atomic<std::uint32_t> mOfDevice = 0; // 0 where it cannot say.
  std::atomic<std::uint32_t> mHardCoded = 0;
  std::uint32_t mTold = 0; // Of the thread, and of Start before it.

  std::mutex mMutex; // Guards mIsWanted.
  std::condition_variable_any mChanged;
  bool mIsWanted = false;
  std::jthread mThread;
};

} // namespace krserial
