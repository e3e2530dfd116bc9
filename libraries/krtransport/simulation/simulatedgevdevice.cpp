#include "simulation/simulatedgevdevice.h"

#include "krsystem/ipv4address.h"
#include "simulation/cameraregisters.h"
#include "simulation/simulatedcamera.h"
#include "simulation/simulatedlink.h"

#include <algorithm>
#include <condition_variable>
#include <mutex>
#include <utility>

namespace krtransport {

namespace {

// How long a device is asked who controls it; the contract of ITransport.
constexpr std::uint32_t kAccessLimitMs = 200;
constexpr std::uint64_t kNanosecondsPerMillisecond = 1000000;

} // namespace

SimulatedGEVDevice::SimulatedGEVDevice(LabGEVCamera aCamera, HostSubnets aSubnets, std::shared_ptr<ICameraClock> aClock)
    : mDescription(std::move(aCamera)), mSubnets(std::move(aSubnets)), mClock(std::move(aClock)),
      mCamera([this] { return std::make_shared<SimulatedCamera>(mDescription, mClock); }) {}

GEVState SimulatedGEVDevice::GetState() const {
  if (const std::shared_ptr<SimulatedCamera> camera = mCamera.Find())
    return {camera->GetIPConfiguration(), camera->GetIPConfigCurrent(), camera->GetUserDefinedName()};
  return {ParseConfiguration(mDescription), mDescription.ipConfigCurrent | cameraregister::kLinkLocal,
          mDescription.userDefinedName};
}

krsystem::AnyDeviceFields SimulatedGEVDevice::GetFields() const {
  return MakeFields(mDescription, GetState(), mSubnets);
}

KrResult SimulatedGEVDevice::ConfigureIP(const IPConfiguration& aConfiguration) {
  return mCamera.Get()->ConfigureIP(aConfiguration);
}

void SimulatedGEVDevice::SetAway(bool aIsAway) {
  // It is the camera that knows of its returns, also of one that nobody has opened yet.
  if (aIsAway && !mDescription.returnAddress.IsEmpty())
    (void)mCamera.Get();
  mCamera.SetAway(aIsAway);
}

void SimulatedGEVDevice::Pause(std::uint32_t aDurationMs) {
  std::mutex mutex; // The clock's way of waiting needs one; nobody wakes this wait.
  std::condition_variable wake;
  std::unique_lock lock(mutex);
  mClock->WaitUntil(lock, wake, mClock->GetNowNs() + std::uint64_t{aDurationMs} * kNanosecondsPerMillisecond,
                    [] { return false; });
}

KrResult SimulatedGEVDevice::GetAccessType(krsystem::AccessType& aType) {
  const std::shared_ptr<SimulatedCamera> camera = mCamera.Get();
  OrderedFaults& faults = camera->GetFaults();
  if (faults.HasRegisterFaults()) {
    const RegisterAnswer answer = faults.TakeAnswer(cameraregister::kControlPrivilege, sizeof(std::uint32_t));
    const bool isLate = answer.isSilent || answer.delayMs > kAccessLimitMs;
    Pause(isLate ? kAccessLimitMs : answer.delayMs);
    if (isLate)
      return Refuse(KrResult::Code::TimeLimitExceeded, "it did not say within 200 ms who controls it.");
  }
  aType = camera->GetAccessType();
  return {};
}

KrResult SimulatedGEVDevice::Open(krsystem::DeviceAccess aAccess, std::unique_ptr<krsystem::IDeviceLink>& aLink) {
  const std::uint32_t address = GetState().ip.address;
  if (IsPresent() && !mSubnets.Reaches(address))
    return Refuse(KrResult::Code::NotFound, "it cannot be reached at " + krsystem::FormatIPv4(address) +
                                                " from the adapter's subnet " + mSubnets.GetText() +
                                                "; give it an address of that subnet.");
  return SimulatedLink::Open(mCamera.Get(), aAccess, aLink);
}

} // namespace krtransport
