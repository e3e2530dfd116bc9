#include "krdevice/krdeviceu3v.h"

#include <utility>

KrDeviceU3V::KrDeviceU3V(std::unique_ptr<krsystem::IDeviceLink> aLink, krsystem::DeviceFields aFields)
    : KrDevice(KrDeviceInfoType::U3V, std::move(aLink), std::move(aFields)) {}

KrDeviceU3V::~KrDeviceU3V() = default;
