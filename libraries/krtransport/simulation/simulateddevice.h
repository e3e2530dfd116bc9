#pragma once
// A device of the lab as discovery meets it, whatever its kind. What a camera's registers and frames are is left to
// SimulatedCamera.

#include "krsystem/itransport.h"
#include "simulation/cameramemory.h"

#include <memory>
#include <optional>

namespace krtransport {

class SimulatedCamera;

/// Thread: any. Ownership: shared by the transport and whoever found it there.
class SimulatedDevice {
public:
  virtual ~SimulatedDevice() = default;

  /// As discovery sees the device at this moment.
  virtual krsystem::AnyDeviceFields GetFields() const = 0;
  virtual const KrString& GetUniqueID() const = 0;
  /// Whether schedule, adapter and orders let the device answer.
  virtual bool IsPresent() const = 0;
  /// What schedule and adapter say from now on; the device is there until the first call.
  virtual void SetAway(bool aIsAway) = 0;
  /// What the lab says of it, whose schedule and file decide when it is there.
  virtual const LabIdentity& GetIdentity() const = 0;

  /// The device's address; nothing for one that has none by its kind.
  virtual std::optional<std::uint32_t> GetAddress() const { return std::nullopt; }
  /// Whether this host reaches the device as it is configured.
  virtual bool IsReachable() const { return true; }
  /// NotSupported for a kind without addresses, Busy while an application controls the device.
  virtual KrResult ConfigureIP(const IPConfiguration& aConfiguration);
  /// NotSupported for a kind that nobody controls; TimeLimitExceeded, after 200 ms, where the device keeps silent.
  virtual KrResult GetAccessType(krsystem::AccessType& aType);
  /// NotSupported for a kind that is no camera.
  virtual KrResult Open(krsystem::DeviceAccess aAccess, std::unique_ptr<krsystem::IDeviceLink>& aLink);
  /// The camera in it, made by the first call; null in a device that is none.
  virtual std::shared_ptr<SimulatedCamera> GetCamera() { return nullptr; }

protected:
  /// A refusal that names the device.
  KrResult Refuse(KrResult::Code aCode, const KrString& aReason) const;
};

} // namespace krtransport
