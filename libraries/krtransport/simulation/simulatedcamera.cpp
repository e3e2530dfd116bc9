#include "simulation/simulatedcamera.h"

#include "krsystem/ipv4address.h"

#include <algorithm>
#include <utility>

namespace krtransport {

namespace {

constexpr std::uint32_t kGEVVersion = 0x00020000;
constexpr std::uint32_t kExclusivePrivilege = 1;
constexpr std::uint32_t kControlPrivilege = 2;

} // namespace

SimulatedCamera::SimulatedCamera(LabCamera aCamera, const LabAdapter& aAdapter, std::shared_ptr<ICameraClock> aClock)
    : mDescription(std::move(aCamera)), mAdapterText(aAdapter.ipAddress + " / " + aAdapter.subnetMask),
      mAdapterAddress(krsystem::ParseIPv4(aAdapter.ipAddress).value_or(0)),
      mAdapterMask(krsystem::ParseIPv4(aAdapter.subnetMask).value_or(0)), mClock(std::move(aClock)),
      mMemory(mDescription) {}

bool SimulatedCamera::IsConfigurationValid() const {
  const std::uint32_t address = mMemory.GetIPConfiguration().address;
  return (address & mAdapterMask) == (mAdapterAddress & mAdapterMask) && address != mAdapterAddress &&
         (address & ~mAdapterMask) != 0 && (address | mAdapterMask) != 0xFFFFFFFF;
}

krsystem::GEVFields SimulatedCamera::GetFields() const {
  const std::lock_guard lock(mMutex);
  const IPConfiguration ip = mMemory.GetIPConfiguration();
  krsystem::GEVFields fields;
  fields.uniqueID = mDescription.macAddress;
  fields.ipAddress = krsystem::FormatIPv4(ip.address);
  fields.subnetMask = krsystem::FormatIPv4(ip.mask);
  fields.defaultGateway = krsystem::FormatIPv4(ip.gateway);
  fields.displayID = mDescription.modelName + " (" + fields.ipAddress + ")";
  fields.vendorName = mDescription.vendorName;
  fields.modelName = mDescription.modelName;
  fields.version = mDescription.version;
  fields.manufacturerInfo = mDescription.manufacturerInfo;
  fields.serialNumber = mDescription.serialNumber;
  fields.userDefinedName = mMemory.GetUserDefinedName();
  fields.configurationValid = IsConfigurationValid();
  fields.macAddress = mDescription.macAddress;
  fields.gevVersion = kGEVVersion;
  fields.ipConfigOptions = mDescription.ipConfigOptions;
  fields.ipConfigCurrent = mDescription.ipConfigCurrent;
  return fields;
}

bool SimulatedCamera::IsPresent() const {
  const std::lock_guard lock(mMutex);
  return mPresent;
}

bool SimulatedCamera::HasAddress(std::uint32_t aAddress) const {
  const std::lock_guard lock(mMutex);
  return mMemory.GetIPConfiguration().address == aAddress;
}

krsystem::AccessType SimulatedCamera::GetAccessType() const {
  const std::lock_guard lock(mMutex);
  return GetControl();
}

krsystem::AccessType SimulatedCamera::GetControl() const {
  for (const Attached& attached : mAttached) {
    if (attached.access == krsystem::DeviceAccess::Exclusive)
      return krsystem::AccessType::Exclusive;
    if (attached.access == krsystem::DeviceAccess::Control)
      return krsystem::AccessType::Control;
  }
  return krsystem::AccessType::Open;
}

KrResult SimulatedCamera::Refuse(KrResult::Code aCode, const KrString& aReason) const {
  return {aCode, mDescription.modelName + " " + mDescription.serialNumber + ": " + aReason};
}

KrResult SimulatedCamera::ConfigureIP(const IPConfiguration& aConfiguration) {
  const std::lock_guard lock(mMutex);
  if (GetControl() != krsystem::AccessType::Open)
    return Refuse(KrResult::Code::Busy, "its IP configuration cannot be changed while an application controls it; "
                                        "close it there first.");
  mMemory.SetIPConfiguration(aConfiguration);
  return {};
}

KrResult SimulatedCamera::Attach(krsystem::DeviceAccess aAccess, ICameraListener& aListener) {
  const std::lock_guard eventLock(mEventMutex);
  const std::lock_guard lock(mMutex);
  if (!mPresent)
    return Refuse(KrResult::Code::NotFound, "it does not answer; check its cable and its power.");
  if (!IsConfigurationValid())
    return Refuse(KrResult::Code::NotFound,
                  "it cannot be reached at " + krsystem::FormatIPv4(mMemory.GetIPConfiguration().address) +
                      " from the adapter's subnet " + mAdapterText + "; give it an address of that subnet.");
  if (mFaults.IsOpeningRefused())
    return Refuse(KrResult::Code::AccessDenied, "it was ordered to refuse being opened; end that order first.");
  const krsystem::AccessType control = GetControl();
  if (control == krsystem::AccessType::Exclusive ||
      (control == krsystem::AccessType::Control && aAccess != krsystem::DeviceAccess::Monitor))
    return Refuse(KrResult::Code::AccessDenied, "another application controls it; close it there, or open it to "
                                                "monitor unless the control is exclusive.");
  mAttached.push_back({&aListener, aAccess});
  mListeners.push_back(&aListener);
  if (aAccess != krsystem::DeviceAccess::Monitor)
    mMemory.SetControlPrivilege(aAccess == krsystem::DeviceAccess::Exclusive ? kExclusivePrivilege : kControlPrivilege);
  return {};
}

void SimulatedCamera::Detach(ICameraListener& aListener) {
  const std::lock_guard eventLock(mEventMutex);
  const std::lock_guard lock(mMutex);
  if (Controls(aListener)) {
    mMemory.EndStream();
    mMemory.SetControlPrivilege(0);
  }
  std::erase_if(mAttached, [&](const Attached& aAttached) { return aAttached.listener == &aListener; });
  std::erase(mListeners, &aListener);
}

const SimulatedCamera::Attached* SimulatedCamera::FindAttached(const ICameraListener& aListener) const {
  const auto found =
      std::ranges::find_if(mAttached, [&](const Attached& aAttached) { return aAttached.listener == &aListener; });
  return found == mAttached.end() ? nullptr : &*found;
}

bool SimulatedCamera::Controls(const ICameraListener& aListener) const {
  const Attached* const attached = FindAttached(aListener);
  return attached && attached->access != krsystem::DeviceAccess::Monitor;
}

bool SimulatedCamera::IsControlledBy(const ICameraListener& aListener) const {
  const std::lock_guard lock(mMutex);
  return Controls(aListener);
}

KrResult SimulatedCamera::Read(const ICameraListener& aListener, std::uint64_t aAddress, void* aData,
                               std::size_t aLength) {
  const std::lock_guard lock(mMutex);
  if (!FindAttached(aListener))
    return Refuse(KrResult::Code::ConnectionLost, "its connection is lost; open it anew when it answers.");
  if (!Controls(aListener) && GetControl() == krsystem::AccessType::Exclusive)
    return Refuse(KrResult::Code::AccessDenied, "another application controls it exclusively.");
  return mMemory.Read(aAddress, aData, aLength, mClock->GetNowNs());
}

KrResult SimulatedCamera::Write(const ICameraListener& aListener, std::uint64_t aAddress, const void* aData,
                                std::size_t aLength) {
  // Held over the report, so that the listeners stay.
  const std::lock_guard eventLock(mEventMutex);
  {
    const std::lock_guard lock(mMutex);
    if (!FindAttached(aListener))
      return Refuse(KrResult::Code::ConnectionLost, "its connection is lost; open it anew when it answers.");
    if (!Controls(aListener))
      return Refuse(KrResult::Code::AccessDenied, "it is open to monitor; open it with control to write registers.");
    const KrResult result = mMemory.Write(aAddress, aData, aLength, mClock->GetNowNs());
    if (!result.IsOK())
      return result;
  }
  for (ICameraListener* listener : mListeners)
    listener->OnCameraChanged();
  return {};
}

std::uint64_t SimulatedCamera::GetPayloadSize() const {
  const std::lock_guard lock(mMutex);
  return mMemory.GetPayloadSize();
}

KrResult SimulatedCamera::BeginStream(const ICameraListener& aListener) {
  const std::lock_guard lock(mMutex);
  if (!FindAttached(aListener))
    return Refuse(KrResult::Code::ConnectionLost, "its connection is lost; open it anew when it answers.");
  if (!Controls(aListener))
    return Refuse(KrResult::Code::AccessDenied, "it is open to monitor; open it with control to receive frames.");
  mMemory.BeginStream(mClock->GetNowNs());
  return {};
}

void SimulatedCamera::EndStream(const ICameraListener& aListener) {
  const std::lock_guard lock(mMutex);
  if (Controls(aListener))
    mMemory.EndStream();
}

std::optional<Exposure> SimulatedCamera::GetNextExposure() const {
  const std::lock_guard lock(mMutex);
  return mMemory.GetNextExposure(mClock->GetNowNs());
}

std::optional<FrameSettings> SimulatedCamera::EndExposure(const ICameraListener& aListener, const Exposure& aExposure) {
  const std::lock_guard lock(mMutex);
  return Controls(aListener) ? mMemory.EndExposure(aExposure) : std::nullopt;
}

void SimulatedCamera::Lose() {
  const std::lock_guard eventLock(mEventMutex);
  {
    const std::lock_guard lock(mMutex);
    if (!mPresent)
      return;
    mPresent = false;
    mAttached.clear();
    mMemory.EndStream();
    mMemory.SetControlPrivilege(0);
  }
  const KrResult reason = Refuse(KrResult::Code::ConnectionLost, "it does not answer any more.");
  for (ICameraListener* listener : mListeners)
    listener->OnCameraLost(reason);
}

void SimulatedCamera::Restore() {
  const std::lock_guard eventLock(mEventMutex);
  {
    const std::lock_guard lock(mMutex);
    if (mPresent)
      return;
    mPresent = true;
  }
  for (ICameraListener* listener : mListeners)
    listener->OnCameraBack();
}

} // namespace krtransport
