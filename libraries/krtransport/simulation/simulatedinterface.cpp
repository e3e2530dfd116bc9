#include "simulation/simulatedinterface.h"

#include <algorithm>
#include <filesystem>
#include <system_error>
#include <utility>

namespace krtransport {

namespace {

/// How soon a file that comes or goes is seen.
constexpr std::uint64_t kFilePeriodNs = 50'000'000;

bool IsPlugged(const LabIdentity& aIdentity, std::uint64_t aNowNs) {
  std::error_code unreadable; // Such a file is as if there were none.
  const bool isKeptAway =
      !aIdentity.awayFile.IsEmpty() && std::filesystem::exists(aIdentity.awayFile.ToUtf8(), unreadable);
  return !isKeptAway && aIdentity.schedule.IsOn(aNowNs);
}

std::uint64_t FindNextChangeNs(const LabIdentity& aIdentity, std::uint64_t aNowNs) {
  const std::uint64_t next = aIdentity.schedule.GetNextChangeNs(aNowNs);
  return aIdentity.awayFile.IsEmpty() ? next : std::min(next, aNowNs + kFilePeriodNs);
}

} // namespace

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
    device->SetAway(!isUsable || !IsPlugged(device->GetIdentity(), aNowNs));
}

std::uint64_t SimulatedInterface::GetNextChangeNs(std::uint64_t aNowNs) const {
  std::uint64_t next = GetOwnNextChangeNs(aNowNs);
  for (const std::shared_ptr<SimulatedDevice>& device : mDevices)
    next = std::min(next, FindNextChangeNs(device->GetIdentity(), aNowNs));
  return next;
}

} // namespace krtransport
