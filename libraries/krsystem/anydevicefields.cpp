#include "anydevicefields.h"

#include <type_traits>

namespace krsystem {

namespace {

constexpr const char* kNoAddress = "0.0.0.0";

bool Contradict(const KrString& aFirst, const KrString& aSecond) {
  return !aFirst.IsEmpty() && !aSecond.IsEmpty() && aFirst != aSecond;
}

} // namespace

const DeviceFields& GetDeviceFields(const AnyDeviceFields& aDevice) {
  return std::visit([](const auto& aKind) -> const DeviceFields& { return aKind; }, aDevice);
}

const NetworkFields* GetNetworkFields(const AnyDeviceFields& aDevice) {
  return std::visit(
      [](const auto& aKind) -> const NetworkFields* {
        if constexpr (std::is_base_of_v<NetworkFields, std::decay_t<decltype(aKind)>>)
          return &aKind;
        else
          return nullptr;
      },
      aDevice);
}

bool AreTwoDevices(const AnyDeviceFields& aFirst, const AnyDeviceFields& aSecond) {
  const NetworkFields* const first = GetNetworkFields(aFirst);
  const NetworkFields* const second = GetNetworkFields(aSecond);
  // A device may speak both protocols of the network.
  if (!first || !second || aFirst.index() != aSecond.index())
    return false;
  const DeviceFields& firstTexts = GetDeviceFields(aFirst);
  const DeviceFields& secondTexts = GetDeviceFields(aSecond);
  const bool haveAddresses = first->ipAddress != kNoAddress && second->ipAddress != kNoAddress;
  return Contradict(firstTexts.serialNumber, secondTexts.serialNumber) ||
         Contradict(firstTexts.vendorName, secondTexts.vendorName) ||
         Contradict(firstTexts.modelName, secondTexts.modelName) ||
         (haveAddresses && Contradict(first->ipAddress, second->ipAddress));
}

} // namespace krsystem
