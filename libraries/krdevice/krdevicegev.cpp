#include "krdevice/krdevicegev.h"

#include "addressing.h"
#include "lastingip.h"

#include <utility>

KrDeviceGEV::KrDeviceGEV(std::unique_ptr<krsystem::IDeviceLink> aLink, krsystem::DeviceFields aFields,
                         KrDeviceAccess aAccess)
    : KrDevice(KrDeviceInfoType::GEV, std::move(aLink), std::move(aFields), aAccess) {}

KrDeviceGEV::~KrDeviceGEV() = default;

KrResult KrDeviceGEV::GetLastingIPConfiguration(KrLastingIPConfiguration& aConfiguration) {
  const std::lock_guard lock(mLastingIP);
  return krdevice::ReadLastingIP(GetRegisterPort(), aConfiguration);
}

KrResult KrDeviceGEV::SetLastingIPConfiguration(const KrLastingIPConfiguration& aConfiguration) {
  const std::lock_guard lock(mLastingIP);
  return krdevice::WriteLastingIP(GetRegisterPort(), aConfiguration);
}

KrResult KrDeviceGEV::SetIPConfiguration(const KrString& aMAC, const KrString& aAddress, const KrString& aSubnetMask,
                                         const KrString& aGateway) {
  return krdevice::ConfigureIP(aMAC, aAddress, aSubnetMask, aGateway);
}

KrResult KrDeviceGEV::GetAccessType(const KrString& aAddress, KrAccessType& aType) {
  krsystem::AccessType type = krsystem::AccessType::Unknown;
  const KrResult result = krdevice::AskAccessType(aAddress, type);
  if (result.IsOK())
    aType = static_cast<KrAccessType>(type);
  return result;
}
