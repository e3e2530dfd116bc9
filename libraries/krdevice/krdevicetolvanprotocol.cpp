#include "krdevice/krdevicetolvanprotocol.h"

#include "addressing.h"

#include <utility>

KrDeviceTolvanProtocol::KrDeviceTolvanProtocol(std::unique_ptr<krsystem::IDeviceLink> aLink,
                                               krsystem::DeviceFields aFields, KrDeviceAccess aAccess)
    : KrDevice(KrDeviceInfoType::TolvanProtocol, std::move(aLink), std::move(aFields), aAccess) {}

KrDeviceTolvanProtocol::~KrDeviceTolvanProtocol() = default;

KrResult KrDeviceTolvanProtocol::SetIPConfiguration(const KrString& aMAC, const KrString& aAddress,
                                                    const KrString& aSubnetMask, const KrString& aGateway) {
  return krdevice::ConfigureIP(aMAC, aAddress, aSubnetMask, aGateway);
}
