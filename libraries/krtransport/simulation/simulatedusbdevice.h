#pragma once
// A device on a USB bus of the lab that is no usable camera.

#include "simulation/devicefields.h"
#include "simulation/simulateddevice.h"

#include <atomic>
#include <utility>

namespace krtransport {

/// Threads and ownership as SimulatedDevice.
class SimulatedUSBDevice final : public SimulatedDevice {
public:
  explicit SimulatedUSBDevice(LabPlainUSBDevice aDevice) : mDescription(std::move(aDevice)) {}

  krsystem::AnyDeviceFields GetFields() const override { return MakeFields(mDescription); }
  const KrString& GetUniqueID() const override { return mDescription.id; }
  bool IsPresent() const override { return !mIsAway; }
  void SetAway(bool aIsAway) override { mIsAway = aIsAway; }
  const LabIdentity& GetIdentity() const override { return mDescription; }

private:
  const LabPlainUSBDevice mDescription;
  std::atomic<bool> mIsAway = false;
};

} // namespace krtransport
