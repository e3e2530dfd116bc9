#include "accessquery.h"

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <future>
#include <system_error>
#include <vector>

namespace krtool {

namespace {

// Enough for the devices of a host that keep silent to be waited for together.
constexpr std::size_t kMostAtOnce = 32;

std::vector<const KrDeviceInfoGEV*> GetAskable(const KrSystem& aSystem) {
  std::vector<const KrDeviceInfoGEV*> devices;
  for (std::size_t index = 0; index < aSystem.GetDeviceCount(); ++index) {
    const auto* device = dynamic_cast<const KrDeviceInfoGEV*>(aSystem.GetDeviceInfo(index));
    if (device && device->IsConfigurationValid())
      devices.push_back(device);
  }
  return devices;
}

} // namespace

KrAccessType AskAccessType(const KrString& aAddress) {
  KrAccessType type = KrAccessType::Unknown;
  // A device that does not say so is listed as Unknown; there is no more to tell.
  return KrDeviceGEV::GetAccessType(aAddress, type).IsOK() ? type : KrAccessType::Unknown;
}

AccessTypes AskAccessTypes(const KrSystem& aSystem, const AccessQuestion& aAsk) {
  const std::vector<const KrDeviceInfoGEV*> devices = GetAskable(aSystem);
  std::vector<KrAccessType> types(devices.size(), KrAccessType::Unknown);
  std::atomic<std::size_t> next = 0;
  const auto askInTurn = [&] {
    for (std::size_t index = next++; index < devices.size(); index = next++)
      types[index] = aAsk(devices[index]->GetIPAddress());
  };
  {
    std::vector<std::future<void>> askers;
    try {
      while (askers.size() + 1 < std::min(kMostAtOnce, devices.size()))
        askers.push_back(std::async(std::launch::async, askInTurn));
    } catch (const std::system_error&) {
      // Those that there are, this thread at least, ask all.
    }
    askInTurn();
  }
  AccessTypes asked;
  for (std::size_t index = 0; index < devices.size(); ++index)
    asked.emplace(devices[index], types[index]);
  return asked;
}

} // namespace krtool
