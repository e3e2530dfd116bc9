#include "ethernetframes.h"

#include <algorithm>
#include <cstddef>

namespace {

using Bytes = std::vector<std::uint8_t>;

constexpr std::size_t kEthernetSize = 14;
constexpr std::size_t kIPSize = 20;
constexpr std::size_t kUdpSize = 8;
constexpr std::size_t kArpSize = 28;
constexpr std::uint32_t kIPv4Type = 0x0800;
constexpr std::uint32_t kArpType = 0x0806;
constexpr std::uint8_t kUdpProtocol = 17;
constexpr std::uint32_t kFragmentBits = 0x3FFF; // More fragments, and where this one belongs.

std::uint32_t Get16(std::span<const std::uint8_t> aBytes, std::size_t aOffset) {
  return static_cast<std::uint32_t>((aBytes[aOffset] << 8) | aBytes[aOffset + 1]);
}

std::uint32_t Get32(std::span<const std::uint8_t> aBytes, std::size_t aOffset) {
  return (Get16(aBytes, aOffset) << 16) | Get16(aBytes, aOffset + 2);
}

void Put16(Bytes& aBytes, std::size_t aOffset, std::uint32_t aValue) {
  aBytes[aOffset] = static_cast<std::uint8_t>(aValue >> 8);
  aBytes[aOffset + 1] = static_cast<std::uint8_t>(aValue);
}

void Put32(Bytes& aBytes, std::size_t aOffset, std::uint32_t aValue) {
  Put16(aBytes, aOffset, aValue >> 16);
  Put16(aBytes, aOffset + 2, aValue);
}

MacAddress GetMac(std::span<const std::uint8_t> aBytes, std::size_t aOffset) {
  MacAddress mac{};
  std::copy_n(aBytes.begin() + static_cast<std::ptrdiff_t>(aOffset), mac.size(), mac.begin());
  return mac;
}

void PutMac(Bytes& aBytes, std::size_t aOffset, const MacAddress& aMac) {
  std::copy(aMac.begin(), aMac.end(), aBytes.begin() + static_cast<std::ptrdiff_t>(aOffset));
}

// The Internet checksum of the header (RFC 1071).
std::uint32_t SumHeader(std::span<const std::uint8_t> aHeader) {
  std::uint32_t sum = 0;
  for (std::size_t i = 0; i < aHeader.size(); i += 2)
    sum += Get16(aHeader, i);
  while (sum > 0xFFFF)
    sum = (sum & 0xFFFF) + (sum >> 16);
  return ~sum & 0xFFFF;
}

bool IsOfType(std::span<const std::uint8_t> aFrame, std::uint32_t aType, std::size_t aPayloadSize) {
  return aFrame.size() >= kEthernetSize + aPayloadSize && Get16(aFrame, 12) == aType;
}

} // namespace

std::optional<UdpFrame> ParseUdpFrame(std::span<const std::uint8_t> aFrame) {
  if (!IsOfType(aFrame, kIPv4Type, kIPSize + kUdpSize))
    return std::nullopt;
  const auto packet = aFrame.subspan(kEthernetSize);
  const std::size_t headerSize = 4u * (packet[0] & 0x0Fu);
  const bool isWhole = packet[0] >> 4 == 4 && (Get16(packet, 6) & kFragmentBits) == 0;
  if (!isWhole || packet[9] != kUdpProtocol || headerSize < kIPSize || packet.size() < headerSize + kUdpSize)
    return std::nullopt;
  const auto datagram = packet.subspan(headerSize);
  const std::size_t size = Get16(datagram, 4);
  if (size < kUdpSize || size > datagram.size())
    return std::nullopt;
  return UdpFrame{.sourceMac = GetMac(aFrame, 6),
                  .targetMac = GetMac(aFrame, 0),
                  .sourceAddress = Get32(packet, 12),
                  .targetAddress = Get32(packet, 16),
                  .sourcePort = static_cast<std::uint16_t>(Get16(datagram, 0)),
                  .targetPort = static_cast<std::uint16_t>(Get16(datagram, 2)),
                  .payload = Bytes(datagram.begin() + kUdpSize, datagram.begin() + static_cast<std::ptrdiff_t>(size))};
}

Bytes MakeUdpFrame(const UdpFrame& aFrame) {
  constexpr std::uint8_t kTimeToLive = 64;
  constexpr std::size_t kIP = kEthernetSize;
  constexpr std::size_t kUdp = kIP + kIPSize;
  Bytes frame(kUdp + kUdpSize);
  PutMac(frame, 0, aFrame.targetMac);
  PutMac(frame, 6, aFrame.sourceMac);
  Put16(frame, 12, kIPv4Type);
  frame[kIP] = 0x45;
  Put16(frame, kIP + 2, static_cast<std::uint32_t>(kIPSize + kUdpSize + aFrame.payload.size()));
  frame[kIP + 8] = kTimeToLive;
  frame[kIP + 9] = kUdpProtocol;
  Put32(frame, kIP + 12, aFrame.sourceAddress);
  Put32(frame, kIP + 16, aFrame.targetAddress);
  Put16(frame, kIP + 10, SumHeader(std::span(frame).subspan(kIP, kIPSize)));
  Put16(frame, kUdp, aFrame.sourcePort);
  Put16(frame, kUdp + 2, aFrame.targetPort);
  // A checksum of 0 says that there is none.
  Put16(frame, kUdp + 4, static_cast<std::uint32_t>(kUdpSize + aFrame.payload.size()));
  frame.insert(frame.end(), aFrame.payload.begin(), aFrame.payload.end());
  return frame;
}

std::optional<AddressQuestion> ParseAddressQuestion(std::span<const std::uint8_t> aFrame) {
  constexpr std::uint32_t kRequest = 1;
  if (!IsOfType(aFrame, kArpType, kArpSize) || Get16(aFrame, kEthernetSize + 6) != kRequest)
    return std::nullopt;
  const auto question = aFrame.subspan(kEthernetSize);
  return AddressQuestion{
      .askerMac = GetMac(question, 8), .askerAddress = Get32(question, 14), .address = Get32(question, 24)};
}

Bytes MakeAddressAnswer(const AddressQuestion& aQuestion, const MacAddress& aMac) {
  // Ethernet, IPv4, six bytes a MAC, four an address, answer (RFC 826).
  constexpr std::array<std::uint8_t, 8> kStart = {0x00, 0x01, 0x08, 0x00, 6, 4, 0x00, 0x02};
  Bytes frame(kEthernetSize + kArpSize);
  PutMac(frame, 0, aQuestion.askerMac);
  PutMac(frame, 6, aMac);
  Put16(frame, 12, kArpType);
  std::copy(kStart.begin(), kStart.end(), frame.begin() + kEthernetSize);
  PutMac(frame, kEthernetSize + 8, aMac);
  Put32(frame, kEthernetSize + 14, aQuestion.address);
  PutMac(frame, kEthernetSize + 18, aQuestion.askerMac);
  Put32(frame, kEthernetSize + 24, aQuestion.askerAddress);
  return frame;
}
