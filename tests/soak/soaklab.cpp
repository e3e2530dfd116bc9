#include "soaklab.h"

#include "krsystem/krsystem.h"
#include "krtransport/krtransport.h"
#include "scene.h"

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
  mWasSilent = true;
  mFaults->SilenceRegisters();
}

void LabCamera::Answer() {
  mFaults->EndRegisterFaults();
  KrGenParameterArray& array = GetParameters();
  KrString text;
  scene::Await("answer of a camera that was silent",
               [&] { return array.Invalidate("Width").IsOK() && array.Get("Width")->ToString(text).IsOK(); });
}
