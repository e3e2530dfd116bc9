#pragma once
// What discovery found, as lines for people and scripts.

#include "accessquery.h"
#include "krsystem/krsystem.h"

#include <string>
#include <vector>

namespace krtool {

/// A line of headings, then one line for each interface, followed by one for each device behind it; empty without
/// interfaces.
/// Columns: "interface" or "device", kind, unique ID, IP address, MAC address, adapter, name, serial number,
/// user-defined name, who controls it, state.
std::string FormatTable(const KrSystem& aSystem, const AccessTypes& aAccess);

/// What is said behind the table where there is no device: which interfaces were asked, by their names, and what to do.
std::string FormatNoDevices(const std::vector<KrString>& aAsked, bool aIsSimulating);

/// The cells of one line of that table.
std::vector<std::string> MakeRow(const KrInterface& aInterface);
std::vector<std::string> MakeRow(const KrDeviceInfo& aDevice, const AccessTypes& aAccess);

} // namespace krtool
