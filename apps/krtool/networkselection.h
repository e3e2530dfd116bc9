#pragma once
// From what a user typed to the one device on the network whose address is meant, whether or not this host can reach
// it, and the adapter that hears it.

#include "krsystem/krsystem.h"

#include <cstdint>
#include <optional>
#include <vector>

namespace krtool {

/// A device and where it is. The pointers are the system's.
struct NetworkDevice {
  const KrDeviceInfo* device = nullptr;      ///< Of GigE Vision or the older protocol; null for one that nobody heard.
  const KrNetworkAdapter* adapter = nullptr; ///< Null for one that only its address reached.
  krsystem::NetworkFields fields;            ///< What it states of itself.
};

/// Chooses among devices by name (krapps::IsNamed) or IP address. NotFound when nothing fits; InvalidInput when several
/// devices do, for a device that is on no network, and for one that several adapters hear where aAdapter names none of
/// them. aAdapter may be empty.
KrResult ChooseNetworkDevice(const std::vector<const KrDeviceInfo*>& aDevices, const KrString& aName,
                             const KrString& aAdapter, NetworkDevice& aChosen);

/// Looks for devices and chooses; an address that no adapter heard is asked directly. InvalidInput also for a device
/// whose MAC address another one of the round states. Blocks for the system's detection timeout, or twice that.
KrResult SelectNetworkDevice(KrSystem& aSystem, const KrString& aName, const KrString& aAdapter,
                             NetworkDevice& aChosen);

/// A text that is a MAC address (any case, ':' or '-') as devices state it, "aa:bb:cc:dd:ee:ff"; nothing for another.
std::optional<KrString> ParseMAC(const KrString& aText);

/// The adapter of a name or, for the empty name, the first in whose subnet an address lies; null where there is none.
const KrNetworkAdapter* FindAdapter(const KrSystem& aSystem, const KrString& aName, std::uint32_t aAddress);

/// The devices of the last round.
std::vector<const KrDeviceInfo*> GetDevices(const KrSystem& aSystem);

} // namespace krtool
