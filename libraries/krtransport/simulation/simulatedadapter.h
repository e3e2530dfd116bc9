#pragma once
// A network adapter of the lab.

#include "simulation/cameraclock.h"
#include "simulation/hostsubnets.h"
#include "simulation/lab.h"
#include "simulation/simulatedinterface.h"

namespace krtransport {

/// Threads and ownership as SimulatedInterface.
class SimulatedAdapter final : public SimulatedInterface {
public:
  SimulatedAdapter(const LabAdapter& aAdapter, KrString aUniqueID, const std::shared_ptr<ICameraClock>& aClock);

  const KrString& GetUniqueID() const override { return mUniqueID; }
  bool IsThere(std::uint64_t aNowNs) const override { return mDescription.schedule.IsOn(aNowNs); }
  /// While it is down its one address is 0.0.0.0.
  krsystem::InterfaceFields GetFields(std::uint64_t aNowNs) const override;
  bool IsUsable(std::uint64_t aNowNs) const override;
  /// A subnet broadcast reaches the subnets' devices alone; without a subnet there is only 255.255.255.255. What a
  /// device of a foreign subnet answers to that is dropped by a strict reverse-path filter unless a default route leads
  /// back through this adapter, by a loose one unless any route does; an answer from 0.0.0.0 is not.
  bool IsHeard(const SimulatedDevice& aDevice, const Broadcast& aBroadcast) const override;
  bool HasSubnetOf(std::uint32_t aAddress, std::uint64_t aNowNs) const override;
  bool HasDefaultRoute(std::uint64_t aNowNs) const override;
  void ReadHost(std::uint64_t aNowNs, krsystem::HostReadings& aReadings) const override;
  KrResult IsAddressUsed(std::uint32_t aAddress, bool& aIsUsed) const override;

protected:
  std::uint64_t GetOwnNextChangeNs(std::uint64_t aNowNs) const override;

private:
  bool IsUp(std::uint64_t aNowNs) const { return mDescription.isUp && !mDescription.downSchedule.IsOn(aNowNs); }

  const LabAdapter mDescription; // Without its devices.
  const KrString mUniqueID;
  const HostSubnets mSubnets;
  const std::vector<std::uint32_t> mUsedAddresses;
};

} // namespace krtransport
