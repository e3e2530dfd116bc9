#pragma once
// The registers of a GigE Vision device that hold how it gets its address at its next start (GigE Vision 2.x, bootstrap
// registers 0x0010, 0x0014 and 0x064C to 0x066C): read, checked, written as a whole or put back.

#include "krdevice/krdevicegev.h"
#include "krgenicam/ikrregisterport.h"

namespace krdevice {

/// As KrDeviceGEV::GetLastingIPConfiguration. Any thread.
KrResult ReadLastingIP(IKrRegisterPort& aPort, KrLastingIPConfiguration& aConfiguration);

/// As KrDeviceGEV::SetLastingIPConfiguration. One thread at a time.
KrResult WriteLastingIP(IKrRegisterPort& aPort, const KrLastingIPConfiguration& aConfiguration);

} // namespace krdevice
