#pragma once
// A device of the older Tolvan protocol as discovery meets it: it has an address, and is no camera to be opened.

#include "simulation/devicefields.h"
#include "simulation/simulateddevice.h"

#include <atomic>
#include <mutex>

namespace krtransport {

/// Threads and ownership as SimulatedDevice.
class SimulatedTolvanDevice final : public SimulatedDevice {
public:
  SimulatedTolvanDevice(LabTolvanDevice aDevice, HostSubnets aSubnets);

  krsystem::AnyDeviceFields GetFields() const override;
  const KrString& GetUniqueID() const override { return mDescription.macAddress; }
  bool IsPresent() const override { return !mIsAway; }
  void SetAway(bool aIsAway) override { mIsAway = aIsAway; }
  const LabIdentity& GetIdentity() const override { return mDescription; }
  std::optional<std::uint32_t> GetAddress() const override { return GetConfiguration().address; }
  bool IsReachable() const override { return mSubnets.Reaches(GetConfiguration().address); }
  KrResult ConfigureIP(const IPConfiguration& aConfiguration) override;

private:
  IPConfiguration GetConfiguration() const;

  const LabTolvanDevice mDescription;
  const HostSubnets mSubnets;
  std::atomic<bool> mIsAway = false;
  mutable std::mutex mMutex; // Guards the configuration.
  IPConfiguration mConfiguration;
};

} // namespace krtransport
