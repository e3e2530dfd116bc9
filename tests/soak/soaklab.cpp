#include "soaklab.h"

#include "krsystem/krsystem.h"
#include "krtransport/krtransport.h"
#include "scene.h"

#include <stdexcept>

void InstallSoakLab() {
  scene::Require(
      KrInstallTransports({.gigEVision = false, .usb3Vision = false, .simulation = true, .labFile = KR_SOAK_LAB}));
}

LabCamera::LabCamera(const char* aUniqueID, const char* aAddress) : mAddress(aAddress) {
  scene::Require(KrFindSimulatedFaults(aUniqueID, mFaults));
}

void LabCamera::Open() {
  KrSystem system;
  const KrDeviceInfo* info = nullptr;
  scene::Await("camera", [&] { return system.FindDevice(mAddress, &info).IsOK(); });
  scene::Require(KrDevice::Open(*info, KrDeviceAccess::Control, mDevice));
  mNames = {(info->GetModelName() + " " + info->GetSerialNumber()).ToUtf8(), mDevice->GetDisplayID().ToUtf8()};
  mAdapter = std::make_unique<KrDeviceAdapter>(*mDevice);
}

void LabCamera::Close() {
  mWasSilent = false;
  mAdapter.reset();
  mDevice.reset();
}

KrGenParameterArray& LabCamera::GetParameters() {
  KrGenParameterArray* array = nullptr;
  scene::Require(mDevice->GetParameters(array));
  return *array;
}

void LabCamera::FallSilent() {
  mWidthBefore = AskWidth();
  mWasSilent = true;
  mFaults->SilenceRegisters();
}

void LabCamera::Answer() {
  mFaults->EndRegisterFaults();
  if (AskWidth() != mWidthBefore)
    throw std::runtime_error("A camera that was silent has another width than before.");
}

// Asks the camera itself, until it answers.
KrString LabCamera::AskWidth() {
  KrGenParameterArray& array = GetParameters();
  KrString text;
  scene::Await("answer of a camera",
               [&] { return array.Invalidate("Width").IsOK() && array.Get("Width")->ToString(text).IsOK(); });
  return text;
}
