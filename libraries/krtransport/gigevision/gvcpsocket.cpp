#include "gigevision/gvcpsocket.h"

#include "gigevision/gvcppacket.h"
#include "krsystem/ipv4address.h"

#include <arpa/inet.h>
#include <cerrno>
#include <netinet/in.h>
#include <sys/socket.h>
#include <system_error>
#include <utility>

namespace krtransport {
namespace {

KrResult MakeSystemError(const std::string& aAttempt) {
  return {KrResult::Code::SystemError, aAttempt + ": " + std::generic_category().message(errno) + "."};
}

sockaddr_in MakeAddress(std::uint32_t aAddress, std::uint16_t aPort) {
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(aAddress);
  address.sin_port = htons(aPort);
  return address;
}

const sockaddr* AsSockaddr(const sockaddr_in& aAddress) {
  return reinterpret_cast<const sockaddr*>(&aAddress);
}

FileDescriptor MakeSocket() {
  return FileDescriptor(::socket(AF_INET, SOCK_DGRAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0));
}

bool Bind(const FileDescriptor& aSocket, std::uint32_t aAddress, std::uint16_t aPort = 0) {
  const sockaddr_in local = MakeAddress(aAddress, aPort);
  return ::bind(aSocket.Get(), AsSockaddr(local), sizeof(local)) == 0;
}

bool BindToAdapter(const FileDescriptor& aSocket, const std::string& aAdapterName) {
  return ::setsockopt(aSocket.Get(), SOL_SOCKET, SO_BINDTODEVICE, aAdapterName.c_str(),
                      static_cast<socklen_t>(aAdapterName.size())) == 0;
}

// Zeros where the kernel does not say.
sockaddr_in GetLocalEnd(const FileDescriptor& aSocket) {
  sockaddr_in local{};
  socklen_t size = sizeof(local);
  if (::getsockname(aSocket.Get(), reinterpret_cast<sockaddr*>(&local), &size) != 0)
    return {};
  return local;
}

} // namespace

KrResult GvcpSocket::OpenOnAdapter(const std::string& aAdapterName, std::uint16_t aPort, GvcpSocket& aSocket) {
  const std::string attempt = "Opening a socket on the network adapter " + aAdapterName;
  FileDescriptor descriptor = MakeSocket();
  const int enable = 1;
  if (!descriptor.IsOpen() || ::setsockopt(descriptor.Get(), SOL_SOCKET, SO_BROADCAST, &enable, sizeof(enable)) != 0 ||
      !BindToAdapter(descriptor, aAdapterName) ||
      (!Bind(descriptor, INADDR_ANY, aPort) && !Bind(descriptor, INADDR_ANY)))
    return MakeSystemError(attempt);
  aSocket.mDescriptor = std::move(descriptor);
  return {};
}

KrResult GvcpSocket::OpenToDevice(std::uint32_t aAddress, std::optional<std::uint32_t> aLocalAddress,
                                  const std::string& aAdapterName, GvcpSocket& aSocket) {
  const std::string attempt = "Opening a socket to the device at " + krsystem::FormatIPv4(aAddress).ToUtf8();
  FileDescriptor descriptor = MakeSocket();
  const sockaddr_in device = MakeAddress(aAddress, kGvcpPort);
  if (!descriptor.IsOpen() || (!aAdapterName.empty() && !BindToAdapter(descriptor, aAdapterName)) ||
      (aLocalAddress && !Bind(descriptor, *aLocalAddress)) ||
      ::connect(descriptor.Get(), AsSockaddr(device), sizeof(device)) != 0)
    return MakeSystemError(attempt);
  aSocket.mDescriptor = std::move(descriptor);
  return {};
}

KrResult GvcpSocket::OpenOnAddress(std::uint32_t aLocalAddress, GvcpSocket& aSocket) {
  FileDescriptor descriptor = MakeSocket();
  if (!descriptor.IsOpen() || !Bind(descriptor, aLocalAddress))
    return MakeSystemError("Opening a socket on " + krsystem::FormatIPv4(aLocalAddress).ToUtf8());
  aSocket.mDescriptor = std::move(descriptor);
  return {};
}

std::uint16_t GvcpSocket::GetLocalPort() const {
  return ntohs(GetLocalEnd(mDescriptor).sin_port);
}

std::uint32_t GvcpSocket::GetLocalAddress() const {
  return ntohl(GetLocalEnd(mDescriptor).sin_addr.s_addr);
}

KrResult GvcpSocket::Send(std::span<const std::uint8_t> aDatagram, std::uint32_t aAddress) const {
  const sockaddr_in address = MakeAddress(aAddress, kGvcpPort);
  const bool connected = aAddress == 0;
  // A socket reports an earlier datagram's fate once, instead of sending: the second try sends.
  for (int attempt = 0; attempt < 2; ++attempt) {
    const auto sent = ::sendto(mDescriptor.Get(), aDatagram.data(), aDatagram.size(), MSG_NOSIGNAL,
                               connected ? nullptr : AsSockaddr(address), connected ? 0 : sizeof(address));
    if (sent == static_cast<ssize_t>(aDatagram.size()))
      return {};
    if (errno != ECONNREFUSED && errno != EINTR)
      break;
  }
  return MakeSystemError("Sending to a device's control channel");
}

std::optional<ReceivedDatagram> GvcpSocket::Receive(std::span<std::uint8_t> aBuffer) const {
  constexpr int kMaxPassedOver = 16;
  for (int passedOver = 0; passedOver < kMaxPassedOver; ++passedOver) {
    sockaddr_in sender{};
    socklen_t senderSize = sizeof(sender);
    const auto size = ::recvfrom(mDescriptor.Get(), aBuffer.data(), aBuffer.size(), MSG_TRUNC,
                                 reinterpret_cast<sockaddr*>(&sender), &senderSize);
    if (size >= 0)
      return ReceivedDatagram{static_cast<std::size_t>(size), ntohl(sender.sin_addr.s_addr)};
    if (errno == EAGAIN || errno == EWOULDBLOCK)
      return std::nullopt;
  }
  return std::nullopt;
}

} // namespace krtransport
