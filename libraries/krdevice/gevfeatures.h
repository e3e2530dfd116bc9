#pragma once
// What the bootstrap registers of a GigE Vision device say of the way to it, as features of the connection. They are
// the same registers whatever carries them.

#include "krgenicam/ikrregisterport.h"
#include "krsystem/hostfeature.h"

#include <functional>

namespace krdevice {

/// Addresses, heartbeat and the size of stream packets (GigE Vision 2.x, 28 bootstrap registers). aOnWritten hears of a
/// register that was written. Nothing can be written where aIsReadOnly. The port must live as long as the features are
/// used.
krsystem::HostFeatures ListGevFeatures(IKrRegisterPort& aPort, bool aIsReadOnly, std::function<void()> aOnWritten);

} // namespace krdevice
