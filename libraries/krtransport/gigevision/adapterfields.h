#pragma once
// What the kernel's tables mean to users: which links are network adapters, and what each is like. Reading the tables
// is left to others.

#include "gigevision/kerneltables.h"
#include "krsystem/hostreadings.h"
#include "krsystem/krinterface.h"

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace krtransport {

/// Gives the name of an adapter's driver, or an empty text.
using DriverNameReader = std::function<std::string(const std::string& aAdapterName)>;

/// The adapters: all of Ethernet's kind, up or not, the loopback adapter when it is up, and of any other kind those
/// with an IPv4 address. One that is down has no address and no gateway, although the kernel keeps them for it; one
/// without a cable keeps them.
std::vector<krsystem::NetworkAdapterFields>
MakeAdapterFields(const KernelTables& aTables, const DriverNameReader& aReadDriverName, bool aMayUsePacketSockets);

/// The same adapters as the kernel has them. aReadFilter gives the reverse-path filter of an adapter's name, "all" for
/// everybody's, and nothing where it cannot be read.
std::vector<krsystem::AdapterReading>
MakeAdapterReadings(const KernelTables& aTables,
                    const std::function<std::optional<std::int32_t>(const std::string& aName)>& aReadFilter);

} // namespace krtransport
