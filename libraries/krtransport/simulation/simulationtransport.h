#pragma once
// The backend of the simulated lab: applications and their tests use it when no camera is at hand.
// What the lab consists of is left to its description, how a camera behaves to SimulatedCamera.

#include "krsystem/itransport.h"
#include "simulation/cameraclock.h"
#include "simulation/lab.h"

#include <memory>
#include <vector>

class KrSimulatedFaults;

namespace krtransport {

class SimulatedCamera;

/// Threads and ownership as ITransport. Cameras answer at once.
class SimulationTransport final : public krsystem::ITransport {
public:
  /// The cameras go by the clock; null for the host's.
  explicit SimulationTransport(const Lab& aLab, std::shared_ptr<ICameraClock> aClock = nullptr);
  ~SimulationTransport() override;

  KrString GetName() const override;
  KrResult ListInterfaces(std::vector<krsystem::InterfaceFields>& aInterfaces) override;
  /// A camera whose address is not in the adapter's subnet hears only a broadcast to 255.255.255.255.
  KrResult Discover(const std::vector<krsystem::InterfaceFields>& aInterfaces,
                    const krsystem::DiscoveryRequest& aRequest, const krsystem::DeviceReport& aReport) override;
  KrResult FindAddress(std::uint32_t aAddress, std::uint32_t aTimeoutMs, krsystem::InterfaceFields& aInterface,
                       krsystem::AnyDeviceFields& aDevice) override;
  KrResult ConfigureIP(const KrString& aMAC, const KrString& aAddress, const KrString& aMask,
                       const KrString& aGateway) override;
  KrResult GetAccessType(const krsystem::AnyDeviceFields& aDevice, krsystem::AccessType& aType) override;
  KrResult Open(const krsystem::InterfaceFields& aInterface, const krsystem::AnyDeviceFields& aDevice,
                krsystem::DeviceAccess aAccess, std::unique_ptr<krsystem::IDeviceLink>& aLink) override;

  /// Makes a camera vanish, as when its cable is pulled, and come back. NotFound for an ID that the lab does not have.
  KrResult Lose(const KrString& aUniqueID);
  KrResult Restore(const KrString& aUniqueID);
  /// The orders to a camera, or null for an ID that the lab does not have.
  std::shared_ptr<KrSimulatedFaults> GetFaults(const KrString& aUniqueID) const;

private:
  struct Adapter {
    krsystem::NetworkAdapterFields fields;
    std::vector<std::shared_ptr<SimulatedCamera>> cameras;
  };

  void Answer(const Adapter& aAdapter, std::size_t aInterfaceIndex, const krsystem::DiscoveryRequest& aRequest,
              const krsystem::DeviceReport& aReport) const;
  std::shared_ptr<SimulatedCamera> FindByID(const KrString& aUniqueID) const;
  std::shared_ptr<SimulatedCamera> FindReachable(std::uint32_t aAddress, const Adapter** aAdapter) const;

  std::vector<Adapter> mAdapters; // Never changes, so that no lock is needed.
};

} // namespace krtransport
