#pragma once
// A USB host controller of the lab.

#include "simulation/cameraclock.h"
#include "simulation/lab.h"
#include "simulation/simulatedinterface.h"

namespace krtransport {

/// Threads and ownership as SimulatedInterface.
class SimulatedController final : public SimulatedInterface {
public:
  SimulatedController(const LabController& aController, const std::shared_ptr<ICameraClock>& aClock);

  const KrString& GetUniqueID() const override { return mFields.uniqueID; }
  bool IsThere(std::uint64_t aNowNs) const override { return mSchedule.IsOn(aNowNs); }
  krsystem::InterfaceFields GetFields(std::uint64_t) const override { return mFields; }
  bool IsUsable(std::uint64_t aNowNs) const override { return IsThere(aNowNs); }
  bool IsHeard(const SimulatedDevice&, const Broadcast&) const override { return true; }
  void ReadHost(std::uint64_t aNowNs, krsystem::HostReadings& aReadings) const override;
  KrResult IsAddressUsed(std::uint32_t aAddress, bool& aIsUsed) const override;

protected:
  std::uint64_t GetOwnNextChangeNs(std::uint64_t aNowNs) const override { return mSchedule.GetNextChangeNs(aNowNs); }

private:
  const krsystem::USBHostControllerFields mFields;
  const LabSchedule mSchedule;
};

} // namespace krtransport
