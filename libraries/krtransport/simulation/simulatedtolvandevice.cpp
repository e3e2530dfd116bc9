#include "simulation/simulatedtolvandevice.h"

#include <utility>

namespace krtransport {

SimulatedTolvanDevice::SimulatedTolvanDevice(LabTolvanDevice aDevice, HostSubnets aSubnets)
    : mDescription(std::move(aDevice)), mSubnets(std::move(aSubnets)),
      mConfiguration(ParseConfiguration(mDescription)) {}

IPConfiguration SimulatedTolvanDevice::GetConfiguration() const {
  const std::lock_guard lock(mMutex);
  return mConfiguration;
}

krsystem::AnyDeviceFields SimulatedTolvanDevice::GetFields() const {
  return MakeFields(mDescription, GetConfiguration(), mSubnets);
}

KrResult SimulatedTolvanDevice::ConfigureIP(const IPConfiguration& aConfiguration) {
  const std::lock_guard lock(mMutex);
  mConfiguration = aConfiguration;
  return {};
}

} // namespace krtransport
