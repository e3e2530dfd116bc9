#pragma once
// An opening of a simulated camera: its registers, its stream channel, its serial ports, and word of its loss.

#include "krsystem/linkevents.h"
#include "simulation/registergate.h"
#include "simulation/serial/serialchannel.h"
#include "simulation/simulatedbuffersource.h"
#include "simulation/simulatedcamera.h"

#include <atomic>
#include <memory>

namespace krtransport {

/// Threads and ownership as IDeviceLink.
class SimulatedLink final : public krsystem::IDeviceLink, private IKrRegisterPort, private ICameraListener {
public:
  /// Opens a camera; aLink is set on success only.
  static KrResult Open(std::shared_ptr<SimulatedCamera> aCamera, krsystem::DeviceAccess aAccess,
                       std::unique_ptr<krsystem::IDeviceLink>& aLink);
  ~SimulatedLink() override;

  IKrRegisterPort& GetRegisterPort() override { return *this; }
  krsystem::IBufferSource* GetBufferSource(std::uint32_t aChannel) override;
  std::shared_ptr<krsystem::IByteChannel> GetByteChannel(std::uint32_t aNumber) override;
  KrGenBootstrap GetBootstrap() const override { return KrGenBootstrap::GigEVision; }
  void GiveBackControl() override;
  bool IsConnected() const override { return !mLost; }
  void SetSink(krsystem::IDeviceLinkSink* aSink) override;

private:
  SimulatedLink(std::shared_ptr<SimulatedCamera> aCamera, krsystem::DeviceAccess aAccess);

  KrResult Read(std::uint64_t aAddress, void* aData, std::size_t aLength, std::uint32_t aTimeoutMs,
                const std::stop_token& aCancel) override;
  KrResult Write(std::uint64_t aAddress, const void* aData, std::size_t aLength, std::uint32_t aTimeoutMs,
                 const std::stop_token& aCancel) override;

  void OnCameraLost(const KrResult& aReason) override;
  void OnCameraBack() override;
  void OnCameraChanged() override;

  const std::shared_ptr<SimulatedCamera> mCamera;
  const std::uint32_t mAddress; // Where the camera was opened.
  const std::shared_ptr<ChannelAccess> mChannelAccess;
  std::atomic<bool> mLost = false;
  std::atomic<bool> mIsBack = false; // The camera's return was told.
  krsystem::LinkEvents mEvents;
  RegisterGate mGate;
  SimulatedBufferSource mSource;
};

} // namespace krtransport
