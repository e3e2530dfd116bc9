#pragma once
// The backend of the simulated lab: applications and their tests use it when no camera is at hand.
// What the lab consists of is left to its description, how a camera behaves to SimulatedCamera.

#include "krsystem/itransport.h"
#include "simulation/cameraclock.h"
#include "simulation/lab.h"
#include "simulation/schedulethread.h"
#include "simulation/simulatedinterface.h"

#include <memory>
#include <mutex>
#include <vector>

class KrSimulatedFaults;

namespace krtransport {

/// Threads and ownership as ITransport. Devices answer at once.
class SimulationTransport final : public krsystem::ITransport {
public:
  /// The lab goes by the clock; null for the host's. Its schedules begin now.
  explicit SimulationTransport(const Lab& aLab, std::shared_ptr<ICameraClock> aClock = nullptr);
  ~SimulationTransport() override;

  KrString GetName() const override;
  KrResult ListInterfaces(std::vector<krsystem::InterfaceFields>& aInterfaces) override;
  /// A device whose address is not in the adapter's subnets hears only a broadcast to 255.255.255.255. An interface
  /// that has gone since it was listed has no devices.
  KrResult Discover(const std::vector<krsystem::InterfaceFields>& aInterfaces,
                    const krsystem::DiscoveryRequest& aRequest, const krsystem::DeviceReport& aReport) override;
  KrResult FindAddress(std::uint32_t aAddress, std::uint32_t aTimeoutMs, krsystem::InterfaceFields& aInterface,
                       krsystem::AnyDeviceFields& aDevice) override;
  /// On one of the adapters where a device answers, best one in whose subnet the new address lies; on all where none is
  /// heard. Devices that share the MAC address there all take it, as from a broadcast; one of them that does is enough.
  KrResult ConfigureIP(const KrString& aMAC, const KrString& aAddress, const KrString& aMask,
                       const KrString& aGateway) override;
  KrResult GetAccessType(const krsystem::AnyDeviceFields& aDevice, krsystem::AccessType& aType) override;
  KrResult Open(const krsystem::InterfaceFields& aInterface, const krsystem::AnyDeviceFields& aDevice,
                krsystem::DeviceAccess aAccess, std::unique_ptr<krsystem::IDeviceLink>& aLink) override;
  /// Limits of the host are added where the lab states some.
  KrResult ReadHost(krsystem::HostReadings& aReadings) override;
  /// Answers at once.
  KrResult FindUsedAddresses(const krsystem::InterfaceFields& aInterface, const std::vector<std::uint32_t>& aAddresses,
                             std::uint32_t aTimeoutMs, const std::stop_token& aCancel,
                             std::vector<std::uint32_t>& aUsed) override;

  /// Makes a camera vanish, as when its cable is pulled, and come back. NotFound for an ID that no camera of the lab
  /// has.
  KrResult Lose(const KrString& aUniqueID);
  KrResult Restore(const KrString& aUniqueID);
  /// The orders to a camera, or null for an ID that no camera of the lab has.
  std::shared_ptr<KrSimulatedFaults> GetFaults(const KrString& aUniqueID) const;

private:
  using Devices = SimulatedInterface::Devices;

  /// Lets everything come and go that is due; gives the time since the lab was made.
  std::uint64_t Update() const;
  std::uint64_t UpdateAndFindNext() const;
  bool HasSchedules() const;
  SimulatedInterface* FindInterface(const krsystem::InterfaceFields& aFields) const;
  Devices FindByID(const KrString& aUniqueID) const;
  static Devices FindAddressed(const SimulatedInterface& aInterface, const KrString& aMAC);
  std::shared_ptr<SimulatedCamera> FindCamera(const KrString& aUniqueID) const;
  bool IsHeard(const SimulatedInterface& aInterface, const SimulatedDevice& aDevice, bool aForSubnet,
               std::uint64_t aNowNs) const;
  /// Where a device of the MAC address is told its new address.
  std::vector<const SimulatedInterface*> ChooseInterfaces(const KrString& aMAC, std::uint32_t aNewAddress,
                                                          std::uint64_t aNowNs) const;
  std::shared_ptr<SimulatedDevice> FindReachable(std::uint32_t aAddress, const SimulatedInterface** aInterface) const;

  const std::shared_ptr<ICameraClock> mClock;
  const std::uint64_t mStartNs;
  std::vector<std::unique_ptr<SimulatedInterface>> mInterfaces; // Never changes, so that no lock is needed.
  std::optional<std::uint64_t> mReceiveBufferLimitBytes;
  std::optional<std::uint64_t> mUsbMemoryMegabytes;
  mutable std::mutex mUpdateMutex;                 // Keeps updates in the order of their times.
  std::unique_ptr<ScheduleThread> mScheduleThread; // Null in a lab without schedules. Ends before all else.
};

} // namespace krtransport
