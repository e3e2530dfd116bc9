#pragma once
// Who controls the GigE Vision devices that were found, asked of all of them at once.

#include "krdevice/krdevicegev.h"
#include "krsystem/krsystem.h"

#include <functional>
#include <map>

namespace krtool {

/// The devices that were asked; Unknown for one that did not say.
using AccessTypes = std::map<const KrDeviceInfo*, KrAccessType>;

/// Asks one device by its address; called from several threads at once.
using AccessQuestion = std::function<KrAccessType(const KrString& aAddress)>;

/// Asks the device at an address, without a second try.
KrAccessType AskAccessType(const KrString& aAddress);

/// Asks the GigE Vision devices among those found that this host can reach.
AccessTypes AskAccessTypes(const KrSystem& aSystem, const AccessQuestion& aAsk = AskAccessType);

} // namespace krtool
