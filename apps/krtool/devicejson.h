#pragma once
// Interfaces and devices as JSON, with all that discovery knows of them.

#include "accessquery.h"
#include "jsonwriter.h"
#include "krsystem/krsystem.h"

#include <string>

namespace krtool {

/// One object {"interfaces":[…],"devices":[…]} and a line break; a device names its interface by its unique ID.
std::string FormatJson(const KrSystem& aSystem, const AccessTypes& aAccess);

/// One object each, as in those lists. A device that was not asked has no "access".
void WriteInterface(JsonWriter& aWriter, const KrInterface& aInterface);
void WriteDevice(JsonWriter& aWriter, const KrDeviceInfo& aDevice, const AccessTypes& aAccess);

} // namespace krtool
