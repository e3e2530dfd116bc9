#pragma once
// A USB3 Vision camera of the lab as discovery meets it.

#include "simulation/cameraclock.h"
#include "simulation/cameraholder.h"
#include "simulation/devicefields.h"
#include "simulation/simulateddevice.h"

namespace krtransport {

/// Threads and ownership as SimulatedDevice.
class SimulatedU3VDevice final : public SimulatedDevice {
public:
  SimulatedU3VDevice(LabU3VCamera aCamera, std::shared_ptr<ICameraClock> aClock);

  krsystem::AnyDeviceFields GetFields() const override;
  const KrString& GetUniqueID() const override { return mDescription.deviceGUID; }
  bool IsPresent() const override { return mCamera.IsPresent(); }
  void SetAway(bool aIsAway) override { mCamera.SetAway(aIsAway); }
  const LabIdentity& GetIdentity() const override { return mDescription; }
  /// AccessDenied where this host has no permission, WrongState where the device is in no valid configuration.
  KrResult Open(krsystem::DeviceAccess aAccess, std::unique_ptr<krsystem::IDeviceLink>& aLink) override;
  std::shared_ptr<SimulatedCamera> GetCamera() override { return mCamera.Get(); }

private:
  const LabU3VCamera mDescription;
  CameraHolder mCamera;
};

} // namespace krtransport
