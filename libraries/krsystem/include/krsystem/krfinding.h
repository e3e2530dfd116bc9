#pragma once
// One reason why a device may not be found or not be usable, in words for the person at the host.

#include "krbase/krstring.h"

#include <cstdint>

/// The reasons; the numbers are part of the interface.
enum class KrFindingKind : std::int32_t {
  NoTransport = 0,        ///< The program installed nothing that could find a device.
  AdapterDown = 1,        ///< The adapter is switched off.
  NoCarrier = 2,          ///< No cable, or nobody at its other end.
  NoAddress = 3,          ///< The adapter has no IPv4 address.
  ForeignSubnet = 4,      ///< A device answered with an address of another subnet.
  ReversePathFilter = 5,  ///< The kernel drops answers from foreign subnets, to which it knows no way back.
  ReceiveBufferLimit = 6, ///< Frames may be lost for want of a socket buffer.
  USBPermission = 7,      ///< A USB device may not be opened.
  USBMemory = 8,          ///< Large frames will not stream.
  USBSpeed = 9,           ///< A USB3 Vision device on a slow port.
  /// Two devices, or a device and this host, have one address. The latter is known only of transports that hear such
  /// a device: the Linux kernel drops what comes from an address of its own.
  AddressConflict = 10,
  SharedMAC = 11,       ///< Two devices state one MAC address, which stands in the text.
  SubnetNotUnique = 12, ///< Two adapters lie in one subnet, or the subnet of one lies within the other's.
  NoAdapter = 13,       ///< The host has no network adapter but the loopback one.
  NoAnswer = 14,        ///< No device answered, and nothing on the host tells why.
};

/// A finding.
struct KrFinding {
  KrFindingKind kind = KrFindingKind::NoTransport; ///< What was found.
  KrString subject; ///< What it is about: an adapter's name, a device's text; empty for the host.
  KrString text;    ///< What was found, a sentence.
  KrString remedy;  ///< What to do about it, with the command where there is one; may have several lines.
  /// Whether all members are equal.
  friend bool operator==(const KrFinding&, const KrFinding&) = default;
};

/// The text of a finding to be read alone: behind its subject and a colon where it does not name that itself. Any
/// thread.
KR_EXPORT KrString KrGetFindingSentence(const KrFinding& aFinding);
