#pragma once
// Which addresses a device cannot have, and which are doubtful behind an adapter. What is done about a doubt is left to
// the command.

#include "krsystem/krinterface.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace krtool {

/// An address of the adapter, as numbers with the first dotted field in the most significant byte.
struct AdapterSubnet {
  std::uint32_t address = 0;
  std::uint32_t mask = 0;
  bool Holds(std::uint32_t aAddress) const { return (aAddress & mask) == (address & mask); }
};

/// The addresses of an adapter, without those that are none (0.0.0.0).
std::vector<AdapterSubnet> GetSubnets(const KrNetworkAdapter& aAdapter);

/// The subnet that holds an address, the first one where none does; nothing where the adapter has none.
std::optional<AdapterSubnet> FindSubnet(const std::vector<AdapterSubnet>& aSubnets, std::uint32_t aAddress);

/// What a device is to be given.
struct AddressPlan {
  std::uint32_t address = 0;
  std::uint32_t mask = 0;
  std::uint32_t gateway = 0;
};

/// What is to be said of a plan, in whole sentences.
struct AddressVerdict {
  std::string refusal; ///< Why no device can have it; empty where one can.
  std::vector<std::string> doubts;
};

/// aOthers are the addresses of all other devices that were found.
AddressVerdict CheckAddress(const AddressPlan& aPlan, const std::vector<AdapterSubnet>& aSubnets,
                            const std::vector<std::uint32_t>& aOthers);

} // namespace krtool
