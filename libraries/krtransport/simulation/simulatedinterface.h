#pragma once
// A network adapter or USB host controller of the lab with the devices behind it: what there is of it at a moment, and
// who of the devices hears a broadcast there. Times are nanoseconds since the lab was made.

#include "krsystem/itransport.h"
#include "simulation/simulateddevice.h"

#include <memory>
#include <vector>

namespace krtransport {

/// Thread: any; Update one at a time. Ownership: owns its devices.
class SimulatedInterface {
public:
  using Devices = std::vector<std::shared_ptr<SimulatedDevice>>;

  /// A broadcast as it meets one device.
  struct Broadcast {
    bool isForSubnet = false;      ///< Goes to the subnets' broadcast addresses, not to 255.255.255.255.
    bool isAnswerRoutable = false; ///< The host knows a way to the device, through whatever interface.
    bool isRoutedHere = false;     ///< A default route leads through this interface.
  };

  explicit SimulatedInterface(Devices aDevices);
  virtual ~SimulatedInterface();

  virtual const KrString& GetUniqueID() const = 0;
  /// Whether the host has it.
  virtual bool IsThere(std::uint64_t aNowNs) const = 0;
  /// What the host says of it.
  virtual krsystem::InterfaceFields GetFields(std::uint64_t aNowNs) const = 0;
  /// Whether devices can be asked through it.
  virtual bool IsUsable(std::uint64_t aNowNs) const = 0;
  /// Whether a device that is present hears a broadcast and is heard itself.
  virtual bool IsHeard(const SimulatedDevice& aDevice, const Broadcast& aBroadcast) const = 0;
  /// Whether an address lies in one of its subnets; no USB host controller has any.
  virtual bool HasSubnetOf(std::uint32_t aAddress, std::uint64_t aNowNs) const;
  /// Whether the host sends through it what it knows no other way for.
  virtual bool HasDefaultRoute(std::uint64_t aNowNs) const;
  /// Adds what a diagnosis wants to know.
  virtual void ReadHost(std::uint64_t aNowNs, krsystem::HostReadings& aReadings) const = 0;
  /// Whether somebody on its network has an address; NotSupported where there is no network.
  virtual KrResult IsAddressUsed(std::uint32_t aAddress, bool& aIsUsed) const = 0;

  const Devices& GetDevices() const { return mDevices; }
  /// Lets devices come and go as schedules say for a moment.
  void Update(std::uint64_t aNowNs);
  /// When the next change may be due; LabSchedule::kNever where there is none.
  std::uint64_t GetNextChangeNs(std::uint64_t aNowNs) const;

protected:
  /// The same for the interface alone.
  virtual std::uint64_t GetOwnNextChangeNs(std::uint64_t aNowNs) const = 0;

private:
  const Devices mDevices;
};

} // namespace krtransport
