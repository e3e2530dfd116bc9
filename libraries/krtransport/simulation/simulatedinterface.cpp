#include "simulation/simulatedinterface.h"

#include <algorithm>
#include <utility>

namespace krtransport {

SimulatedInterface::SimulatedInterface(Devices aDevices) : mDevices(std::move(aDevices)) {}

SimulatedInterface::~SimulatedInterface() = default;

bool SimulatedInterface::HasSubnetOf(std::uint32_t, std::uint64_t) const {
  return false;
}

bool SimulatedInterface::HasDefaultRoute(std::uint64_t) const {
  return false;
}

void SimulatedInterface::Update(std::uint64_t aNowNs) {
  const bool isUsable = IsUsable(aNowNs);
  for (const std::shared_ptr<SimulatedDevice>& device : mDevices)
    device->SetAway(!isUsable || !device->GetSchedule().IsOn(aNowNs));
}

std::uint64_t SimulatedInterface::GetNextChangeNs(std::uint64_t aNowNs) const {
  std::uint64_t next = GetOwnNextChangeNs(aNowNs);
  for (const std::shared_ptr<SimulatedDevice>& device : mDevices)
    next = std::min(next, device->GetSchedule().GetNextChangeNs(aNowNs));
  return next;
}

} // namespace krtransport
