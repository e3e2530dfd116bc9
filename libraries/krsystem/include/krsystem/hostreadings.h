#pragma once
// What a transport reads of the host when somebody asks why a device is not found: plain values without judgement.
// What they mean is left to the diagnosis.

#include "krbase/krstring.h"
#include "krsystem/krinterface.h"

#include <cstdint>
#include <optional>
#include <vector>

namespace krsystem {

/// What an adapter consists of.
enum class AdapterBasis : std::int32_t {
  Plug = 0,         ///< Hardware, or what cannot be told from it.
  VirtualCable = 1, ///< One end of a cable that the kernel plays, as between containers and their host.
  Ports = 2,        ///< Other adapters, its ports: a bridge or a bond.
  Adapter = 3,      ///< Another adapter, on which it stands: a VLAN or a macvlan.
  Nothing = 4,      ///< A program or nobody: a bridge without ports, a tunnel.
};

/// A network adapter as the kernel has it, also where it is down and its addresses count for nothing.
struct AdapterReading {
  KrString uniqueID;                     ///< As NetworkAdapterFields' at the same moment.
  KrString name;                         ///< The system's name of it, for example "eth0".
  bool isLoopback = false;               ///< It leads to this host alone.
  bool isUp = true;                      ///< Switched on by the system.
  bool hasCarrier = true;                ///< A cable with somebody at its other end, or its like.
  std::vector<AdapterAddress> addresses; ///< Empty where there is none.
  /// How strictly the kernel drops what comes from addresses that it would not answer by this adapter: 0 not at all,
  /// 1 strictly, 2 loosely (Linux, rp_filter; the stricter of the adapter's and everybody's).
  std::int32_t reversePathFilter = 0;
  /// What is for everywhere goes out by this adapter (the default route of the smallest metric).
  bool hasDefaultRoute = false;
  AdapterBasis basis = AdapterBasis::Plug; ///< What it stands on.
  bool isPort = false;                     ///< Of a bridge or a bond, which has the addresses and hears what comes.
  bool hasOthersOn = false;                ///< Other adapters stand on it, which may have the addresses.
};

/// A USB3 Vision device on the bus, whether or not it can be used.
struct USBReading {
  KrString uniqueID;      ///< As USBFields' and U3VFields'.
  KrString displayID;     ///< For people.
  bool mayOpen = true;    ///< Permission to read and write its device file.
  std::int32_t speed = 0; ///< 1 low, 2 full, 3 high, 4 super, others unknown.
};

/// What all transports read together. A value that nobody could read stays empty.
struct HostReadings {
  std::vector<AdapterReading> adapters;                 ///< All network adapters of the host.
  std::vector<USBReading> usbDevices;                   ///< All USB3 Vision devices of the host.
  std::optional<std::uint64_t> receiveBufferLimitBytes; ///< The largest buffer that a socket is given.
  std::optional<std::uint64_t> usbMemoryMegabytes;      ///< What all USB transfers share; 0 for no limit.
  bool hasNetworkTransport = false;                     ///< A transport that looks on network adapters is there.
  bool hasUSBTransport = false;                         ///< A transport that looks on USB is there.
  bool hasOtherTransport = false;                       ///< Transports are there, none of which says what it looks on.
};

} // namespace krsystem
