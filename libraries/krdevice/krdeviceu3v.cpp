#include "krdevice/krdeviceu3v.h"

#include <utility>

KrDeviceU3V::KrDeviceU3V(std::unique_ptr<krsystem::IDeviceLink> aLink, const KrString& aDisplayID)
    : KrDevice(std::move(aLink), aDisplayID) {}

KrDeviceU3V::~KrDeviceU3V() = default;
