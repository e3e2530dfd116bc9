#include "bridge/bridgelink.h"

#include <utility>

namespace krserial {

BridgeLink::BridgeLink(IKrDeviceAdapter& aAdapter, KrDeviceSerial aPort, BridgeCounters& aCounters)
    : mHasPort(aPort != kNoDeviceSerial), mSpeed(aAdapter, aPort, mStatus),
      mLine(aAdapter, aPort, mSpeed, aCounters, mStatus) {}

BridgeLink::~BridgeLink() {
  mStop.request_stop();
  mEndBytes.reset();
  mPump.reset();
  // It tells the end, so it ends before that.
  mSpeed.Stop();
}

KrResult BridgeLink::Run(std::unique_ptr<IHostEnd> aEnd, const std::optional<std::uint32_t>& aBaudRate) {
  if (mHasPort) {
    if (KrResult opened = mLine.Open(); !opened.IsOK())
      return opened;
  }
  mEnd = std::move(aEnd);
  mSpeed.AskSupported();
  mBaudRate = aBaudRate.value_or(0);
  PreferSpeed();
  mEnd->SetSpeedRequest([this](std::uint32_t aRequested) { return mSpeed.Request(aRequested); });
  mSpeed.Start([this](const DevicePortSpeed& aSpeed) { mEnd->TellSpeed(aSpeed); });
  if (mHasPort) {
    mPump = std::make_unique<Pump>(*mEnd, mLine, mStatus, [this] { PreferSpeed(); });
    mEndBytes.emplace(mStop.get_token(), [this] { mPump->RequestStop(); });
  }
  return mStop.stop_requested() ? KrResult(KrResult::Code::Aborted, "The bridge was stopped while it was started.")
                                : KrResult();
}

KrResult BridgeLink::Configure(const KrSerialPortConfiguration& aConfiguration) {
  KrResult configured = mEnd->Configure(aConfiguration);
  if (configured.IsOK()) {
    mBaudRate = aConfiguration.baudRate;
    PreferSpeed();
  }
  return configured;
}

// At the start, and whenever the host's port is set to it anew.
void BridgeLink::PreferSpeed() {
  std::uint32_t preferred = mBaudRate;
  while (preferred != 0) {
    mSpeed.Prefer(preferred);
    // Of two threads that do it at once, the one with the former speed may have been the later one.
    const std::uint32_t former = std::exchange(preferred, mBaudRate.load());
    if (former == preferred)
      return;
  }
}

KrSerialBridgeState BridgeLink::GetState() const {
  if (mStatus.HasDeviceFailed())
    return KrSerialBridgeState::WaitingForDevice;
  return mStatus.IsPortLost() ? KrSerialBridgeState::WaitingForPort : KrSerialBridgeState::Running;
}

} // namespace krserial
