#include "simulation/simulatedcamera.h"

#include "krsystem/ipv4address.h"

#include <algorithm>
#include <utility>

namespace krtransport {

namespace {

constexpr std::uint32_t kExclusivePrivilege = 1;
constexpr std::uint32_t kControlPrivilege = 2;

void OrderFaults(const LabFaults& aOrders, OrderedFaults& aFaults) {
  aFaults.RefuseOpening(aOrders.refusesOpening);
  if (aOrders.isSilent)
    aFaults.SilenceRegisters();
  for (const LabSilentRegister& silent : aOrders.silentRegisters)
    aFaults.SilenceRegister(silent.address, silent.times);
  aFaults.SlowRegisters(aOrders.registerDelayMs);
  aFaults.AddDrop(aOrders.droppedFrames);
  if (const auto& lost = aOrders.lostPackets)
    aFaults.AddPacketFault(lost->frames, {.firstPacket = lost->firstPacket, .packets = lost->packets});
}

// Its registers are those of a GigE Vision camera without an address, but for its texts.
LabGEVCamera MakeRegisters(const LabU3VCamera& aCamera) {
  LabGEVCamera registers;
  static_cast<LabCamera&>(registers) = aCamera;
  registers.hasWideTexts = true;
  return registers;
}

// What messages call a camera, which may have no texts; its ID it always has.
KrString MakeName(const LabCamera& aCamera, const KrString& aID) {
  if (aCamera.modelName.IsEmpty())
    return aID;
  return aCamera.modelName + " " + (aCamera.serialNumber.IsEmpty() ? aID : aCamera.serialNumber);
}

} // namespace

SimulatedCamera::SimulatedCamera(const LabU3VCamera& aCamera, std::shared_ptr<ICameraClock> aClock)
    : SimulatedCamera(MakeRegisters(aCamera), aCamera.deviceGUID, std::move(aClock)) {}

SimulatedCamera::SimulatedCamera(const LabGEVCamera& aCamera, std::shared_ptr<ICameraClock> aClock)
    : SimulatedCamera(aCamera, aCamera.macAddress, std::move(aClock)) {}

SimulatedCamera::SimulatedCamera(const LabGEVCamera& aCamera, const KrString& aID, std::shared_ptr<ICameraClock> aClock)
    : mName(MakeName(aCamera, aID)), mForeignControl(aCamera.foreignControl), mLosesPower(aCamera.faults.losesPower),
      mReturnAddress(krsystem::ParseIPv4(aCamera.returnAddress).value_or(0)), mClock(std::move(aClock)),
      mSerialPorts(aCamera, mName, mClock), mMemory(aCamera) {
  OrderFaults(aCamera.faults, mFaults);
  SetControlPrivilege(mForeignControl);
}

bool SimulatedCamera::IsPresent() const {
  const std::lock_guard lock(mMutex);
  return IsThere();
}

IPConfiguration SimulatedCamera::GetIPConfiguration() const {
  const std::lock_guard lock(mMutex);
  return mMemory.GetIPConfiguration();
}

std::uint32_t SimulatedCamera::GetIPConfigCurrent() const {
  const std::lock_guard lock(mMutex);
  return mMemory.GetIPConfigCurrent();
}

KrString SimulatedCamera::GetUserDefinedName() const {
  const std::lock_guard lock(mMutex);
  return mMemory.GetUserDefinedName();
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
  return mForeignControl;
}

void SimulatedCamera::SetControlPrivilege(krsystem::AccessType aControl) {
  if (aControl == krsystem::AccessType::Exclusive)
    mMemory.SetControlPrivilege(kExclusivePrivilege);
  else
    mMemory.SetControlPrivilege(aControl == krsystem::AccessType::Control ? kControlPrivilege : 0);
}

KrResult SimulatedCamera::Refuse(KrResult::Code aCode, const KrString& aReason) const {
  return {aCode, mName + ": " + aReason};
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
  if (!IsThere())
    return Refuse(KrResult::Code::NotFound, "it does not answer; check its cable and its power.");
  if (mFaults.IsOpeningRefused())
    return Refuse(KrResult::Code::AccessDenied, "it refuses to be opened, as a simulated fault; end that fault first.");
  const krsystem::AccessType control = GetControl();
  if (control == krsystem::AccessType::Exclusive ||
      (control == krsystem::AccessType::Control && aAccess != krsystem::DeviceAccess::Monitor))
    return Refuse(KrResult::Code::AccessDenied, "another application controls it; close it there first.");
  mAttached.push_back({&aListener, aAccess});
  mListeners.push_back(&aListener);
  SetControlPrivilege(GetControl());
  return {};
}

void SimulatedCamera::Detach(ICameraListener& aListener) {
  const std::lock_guard eventLock(mEventMutex);
  const std::lock_guard lock(mMutex);
  if (Controls(aListener)) {
    mMemory.EndStream();
    mSerialPorts.End(Refuse(KrResult::Code::ConnectionLost, "it was closed; open it anew."));
  }
  std::erase_if(mAttached, [&](const Attached& aAttached) { return aAttached.listener == &aListener; });
  SetControlPrivilege(GetControl());
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
    UpdateSerialPorts();
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
  SetAbsence(mIsPulled, true, false);
}

void SimulatedCamera::LosePower() {
  SetAbsence(mIsPulled, true, true);
}

void SimulatedCamera::Restore() {
  SetAbsence(mIsPulled, false, false);
}

void SimulatedCamera::SetAway(bool aIsAway) {
  SetAbsence(mIsAway, aIsAway, aIsAway && mLosesPower);
}

void SimulatedCamera::UpdateSerialPorts() {
  mSerialPorts.Update([this](std::uint32_t aNumber) { return mMemory.GetSerialSettings(aNumber); });
}

void SimulatedCamera::TakeReturnAddress() {
  if (mReturnAddress == 0)
    return;
  IPConfiguration configuration = mMemory.GetIPConfiguration();
  configuration.address = mReturnAddress;
  mMemory.SetIPConfiguration(configuration);
}

void SimulatedCamera::SetAbsence(bool& aReason, bool aIsAbsent, bool aIsPowerLost) {
  const std::lock_guard eventLock(mEventMutex);
  bool isThere = false;
  {
    const std::lock_guard lock(mMutex);
    const bool wasThere = IsThere();
    aReason = aIsAbsent;
    isThere = IsThere();
    if (!isThere) {
      mAttached.clear();
      mMemory.EndStream();
      SetControlPrivilege(mForeignControl);
    }
    if (aIsPowerLost) {
      mMemory.Restart();
      UpdateSerialPorts();
    }
    if (isThere == wasThere)
      return;
    if (isThere)
      TakeReturnAddress();
  }
  const KrResult reason =
      Refuse(KrResult::Code::ConnectionLost,
             "it does not answer any more; check its cable and its power, and open it anew when it is back.");
  for (ICameraListener* listener : mListeners)
    isThere ? listener->OnCameraBack() : listener->OnCameraLost(reason);
  // After the links know of it, so that none opens a port that this would miss.
  if (!isThere)
    mSerialPorts.End(reason);
}

} // namespace krtransport
