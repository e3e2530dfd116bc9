#include "acquisition/cameraidentity.h"

#include "krsystem/macaddress.h"

namespace krviewer {

namespace {

bool HasMAC(const KrDeviceInfoGEV& aCamera) {
  const auto mac = krsystem::ParseMAC(aCamera.GetMACAddress());
  return mac && *mac != krsystem::MACAddress{};
}

// Without a MAC address the unique ID holds the address, which may change.
bool HasUnsteadyID(const KrDeviceInfo& aCamera) {
  const auto* const camera = dynamic_cast<const KrDeviceInfoGEV*>(&aCamera);
  return camera && !HasMAC(*camera);
}

} // namespace

bool IsSameCamera(const KrDeviceInfo& aFirst, const KrDeviceInfo& aSecond) {
  if (aFirst.GetType() != aSecond.GetType())
    return false;
  if (aFirst.GetUniqueID() == aSecond.GetUniqueID())
    return true;
  return HasUnsteadyID(aFirst) && HasUnsteadyID(aSecond) && !aFirst.GetSerialNumber().IsEmpty() &&
         aFirst.GetSerialNumber() == aSecond.GetSerialNumber() && aFirst.GetVendorName() == aSecond.GetVendorName() &&
         aFirst.GetModelName() == aSecond.GetModelName();
}

bool IsSameAddress(const KrDeviceInfo& aFirst, const KrDeviceInfo& aSecond) {
  return GetAddress(aFirst) == GetAddress(aSecond);
}

KrString GetAddress(const KrDeviceInfo& aCamera) {
  const auto* const camera = dynamic_cast<const KrDeviceInfoGEV*>(&aCamera);
  return camera ? camera->GetIPAddress() : KrString();
}

} // namespace krviewer
