#include "krdevice/krdeviceu3v.h"

#include <utility>

KrDeviceU3V::KrDeviceU3V(std::unique_ptr<krsystem::IDeviceLink> aLink, krsystem::DeviceFields aFields,
                         KrDeviceAccess aAccess)
    : KrDevice(KrDeviceInfoType::U3V, std::move(aLink), std::move(aFields), aAccess) {}

KrDeviceU3V::~KrDeviceU3V() = default;
