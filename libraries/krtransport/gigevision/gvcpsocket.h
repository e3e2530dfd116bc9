#pragma once
// A UDP socket for the control channel and the event that wakes whoever waits on one. What is sent, and how long an
// answer is awaited, is decided by the clients.

#include "krbase/filedescriptor.h"
#include "krbase/krresult.h"
#include "krbase/wakeevent.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>

namespace krtransport {

using krbase::FileDescriptor;
using krbase::WakeEvent;

/// One datagram's way in: how many bytes the sender sent, even where fewer fitted, and who it was.
struct ReceivedDatagram {
  std::size_t size = 0;
  std::uint32_t sender = 0;
};

/// A UDP socket that never blocks. One thread at a time.
class GvcpSocket {
public:
  /// For broadcasts on one adapter. It is bound to the adapter and to no address: a socket bound to the adapter's
  /// address would not hear answers that come by broadcast, as those of a device on a foreign subnet do.
  /// It hears on a port that the system chooses, or on aPort where that is not 0 and free: sockets on different
  /// adapters may have the same.
  static KrResult OpenOnAdapter(const std::string& aAdapterName, std::uint16_t aPort, GvcpSocket& aSocket);
  /// For one device; the routing table chooses the way, from aLocalAddress where there is one, and on the adapter alone
  /// where its name is not empty. Datagrams of others are not received.
  static KrResult OpenToDevice(std::uint32_t aAddress, std::optional<std::uint32_t> aLocalAddress,
                               const std::string& aAdapterName, GvcpSocket& aSocket);
  /// For what anybody sends to one of this host's addresses, on a port that the system chooses.
  static KrResult OpenOnAddress(std::uint32_t aLocalAddress, GvcpSocket& aSocket);

  int GetDescriptor() const { return mDescriptor.Get(); }
  /// The port on which the socket hears.
  std::uint16_t GetLocalPort() const;
  /// The address from which a socket to one device sends.
  std::uint32_t GetLocalAddress() const;
  /// Sends to an address, and to the connected device when it is 0.
  KrResult Send(std::span<const std::uint8_t> aDatagram, std::uint32_t aAddress = 0) const;
  /// Takes a datagram that has come; nothing where none has. Errors that the network reports for an earlier datagram
  /// are passed over: a device that starts up later may still answer.
  std::optional<ReceivedDatagram> Receive(std::span<std::uint8_t> aBuffer) const;

private:
  FileDescriptor mDescriptor;
};

} // namespace krtransport
