#pragma once
// What discovery found, as lines for people and scripts or as JSON.

#include "krsystem/krsystem.h"

#include <string>

namespace krtool {

/// A line of headings, then one line for each interface, followed by one for each device behind it; says so when there
/// are none.
/// Columns: "interface" or "device", kind, unique ID, IP address, MAC address, name, serial number, user-defined name,
/// state.
std::string FormatTable(const KrSystem& aSystem);

/// One object {"interfaces":[…],"devices":[…]} and a line break; a device names its interface by its unique ID.
std::string FormatJson(const KrSystem& aSystem);

} // namespace krtool
