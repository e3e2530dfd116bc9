#pragma once
// Gives a device another IP configuration by its MAC address (GigE Vision 2.x, FORCEIP), on the network adapter where
// it is. Whether the configuration makes sense is left to those who ask for it.

#include "krbase/krresult.h"
#include "krsystem/krinterface.h"
#include "krsystem/macaddress.h"

#include <cstddef>
#include <cstdint>
#include <set>
#include <vector>

namespace krtransport {

struct ForcedConfiguration {
  krsystem::MACAddress mac{};
  std::uint32_t address = 0;
  std::uint32_t mask = 0;
  std::uint32_t gateway = 0;
};

/// Tells the device which addresses to use from now on, until it is switched off. It is looked for first, for 300 ms at
/// most, so that a device elsewhere that states the same MAC address is left alone; where nobody answers all adapters
/// are tried, as a device may hear what we do not hear it say. NotFound when no device acknowledges within a second,
/// AccessDenied or ProtocolError when one refuses and none acknowledges: two devices of one MAC address on one network
/// cannot be told apart and are both told.
KrResult ForceIP(const std::vector<krsystem::NetworkAdapterFields>& aAdapters,
                 const ForcedConfiguration& aConfiguration);

/// The adapters, by their indexes, to tell a device on that answered on some of them: the first of those in whose
/// subnet its new address lies, or else the first; all where it answered on none.
std::vector<std::size_t> ChooseAdapters(const std::vector<krsystem::NetworkAdapterFields>& aAdapters,
                                        const std::set<std::size_t>& aAnswered, std::uint32_t aNewAddress);

} // namespace krtransport
