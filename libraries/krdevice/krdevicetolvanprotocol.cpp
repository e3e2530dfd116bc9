#include "krdevice/krdevicetolvanprotocol.h"

#include "addressing.h"

#include <utility>

KrDeviceTolvanProtocol::KrDeviceTolvanProtocol(std::unique_ptr<krsystem::IDeviceLink> aLink, const KrString& aDisplayID)
    : KrDevice(std::move(aLink), aDisplayID) {}

KrDeviceTolvanProtocol::~KrDeviceTolvanProtocol() = default;

KrResult KrDeviceTolvanProtocol::SetIPConfiguration(const KrString& aMAC, const KrString& aAddress,
                                                    const KrString& aSubnetMask, const KrString& aGateway) {
  return krdevice::ConfigureIP(aMAC, aAddress, aSubnetMask, aGateway);
}
