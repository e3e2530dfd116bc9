#pragma once
// A GigE Vision camera of the lab as discovery meets it, on one adapter.

#include "simulation/cameraclock.h"
#include "simulation/cameraholder.h"
#include "simulation/devicefields.h"
#include "simulation/simulateddevice.h"

namespace krtransport {

/// Threads and ownership as SimulatedDevice.
class SimulatedGEVDevice final : public SimulatedDevice {
public:
  SimulatedGEVDevice(LabGEVCamera aCamera, HostSubnets aSubnets, std::shared_ptr<ICameraClock> aClock);

  krsystem::AnyDeviceFields GetFields() const override;
  const KrString& GetUniqueID() const override { return mDescription.macAddress; }
  bool IsPresent() const override { return mCamera.IsPresent(); }
  void SetAway(bool aIsAway) override;
  const LabIdentity& GetIdentity() const override { return mDescription; }
  std::optional<std::uint32_t> GetAddress() const override { return GetState().ip.address; }
  bool IsReachable() const override { return mSubnets.Reaches(GetState().ip.address); }
  KrResult ConfigureIP(const IPConfiguration& aConfiguration) override;
  KrResult GetAccessType(krsystem::AccessType& aType) override;
  KrResult Open(krsystem::DeviceAccess aAccess, std::unique_ptr<krsystem::IDeviceLink>& aLink) override;
  std::shared_ptr<SimulatedCamera> GetCamera() override { return mCamera.Get(); }

private:
  GEVState GetState() const;
  /// Waits by the lab's clock.
  void Pause(std::uint32_t aDurationMs);

  const LabGEVCamera mDescription;
  const HostSubnets mSubnets;
  const std::shared_ptr<ICameraClock> mClock;
  CameraHolder mCamera;
};

} // namespace krtransport
