#include "gencp/packet.h"

#include <algorithm>
#include <array>

namespace krcamerabridge {

namespace {

constexpr std::array<std::uint8_t, 2> kPreamble{0x01, 0x00};
constexpr std::size_t kHeaderChecksum = 2;
constexpr std::size_t kPacketChecksum = 4;
constexpr std::size_t kChecked = 6; // Channel, then the common and the specific data.
constexpr std::size_t kCode = 8;
constexpr std::size_t kCommandID = 10;
constexpr std::size_t kLength = 12;
constexpr std::size_t kRequestID = 14;

std::uint16_t ReadWord(std::span<const std::uint8_t> aBytes, std::size_t aOffset) {
  return static_cast<std::uint16_t>(aBytes[aOffset] << 8 | aBytes[aOffset + 1]);
}

void PutWord(std::vector<std::uint8_t>& aBytes, std::size_t aOffset, std::uint16_t aWord) {
  aBytes[aOffset] = static_cast<std::uint8_t>(aWord >> 8);
  aBytes[aOffset + 1] = static_cast<std::uint8_t>(aWord);
}

// UDP sends 0 as 0xFFFF, and the standard does not say whether GenCP does.
bool IsSameChecksum(std::uint16_t aLeft, std::uint16_t aRight) {
  return aLeft % 0xFFFF == aRight % 0xFFFF;
}

} // namespace

void AppendNumber(std::vector<std::uint8_t>& aBytes, std::uint64_t aNumber, std::size_t aSize) {
  for (std::size_t byte = aSize; byte > 0; --byte)
    aBytes.push_back(static_cast<std::uint8_t>(aNumber >> 8 * (byte - 1)));
}

std::uint64_t ReadNumber(std::span<const std::uint8_t> aBytes) {
  std::uint64_t number = 0;
  for (const std::uint8_t byte : aBytes)
    number = number << 8 | byte;
  return number;
}

std::uint16_t GetChecksum(std::span<const std::uint8_t> aBytes) {
  std::uint64_t sum = 0;
  for (std::size_t i = 0; i < aBytes.size(); ++i)
    sum += i % 2 == 0 ? std::uint64_t{aBytes[i]} << 8 : aBytes[i];
  while (sum > 0xFFFF)
    sum = (sum & 0xFFFF) + (sum >> 16);
  return static_cast<std::uint16_t>(~sum);
}

std::vector<std::uint8_t> BuildPacket(const Packet& aPacket) {
  std::vector<std::uint8_t> bytes(kPreamble.begin(), kPreamble.end());
  bytes.reserve(kPacketHeaderBytes + aPacket.specific.size());
  AppendNumber(bytes, 0, kChecked - kHeaderChecksum); // The checksums come last.
  AppendNumber(bytes, aPacket.channel, 2);
  AppendNumber(bytes, aPacket.code, 2);
  AppendNumber(bytes, aPacket.commandID, 2);
  AppendNumber(bytes, aPacket.specific.size(), 2);
  AppendNumber(bytes, aPacket.requestID, 2);
  PutWord(bytes, kHeaderChecksum, GetChecksum(std::span(bytes).subspan(kChecked)));
  bytes.insert(bytes.end(), aPacket.specific.begin(), aPacket.specific.end());
  PutWord(bytes, kPacketChecksum, GetChecksum(std::span(bytes).subspan(kChecked)));
  return bytes;
}

std::vector<std::uint8_t> BuildReadMemory(std::uint64_t aAddress, std::size_t aSize) {
  std::vector<std::uint8_t> specific;
  AppendNumber(specific, aAddress, 8);
  AppendNumber(specific, 0, 2);
  AppendNumber(specific, aSize, 2);
  return specific;
}

std::vector<std::uint8_t> BuildWriteMemory(std::uint64_t aAddress, std::span<const std::uint8_t> aData) {
  std::vector<std::uint8_t> specific;
  AppendNumber(specific, aAddress, 8);
  specific.insert(specific.end(), aData.begin(), aData.end());
  return specific;
}

PacketState ParsePacket(std::span<const std::uint8_t> aBytes, Packet& aPacket, std::size_t& aSize) {
  const std::size_t compared = std::min(aBytes.size(), kPreamble.size());
  if (!std::equal(aBytes.begin(), aBytes.begin() + static_cast<std::ptrdiff_t>(compared), kPreamble.begin()))
    return PacketState::Damaged;
  if (aBytes.size() < kPacketHeaderBytes)
    return PacketState::Incomplete;
  const std::uint16_t header = GetChecksum(aBytes.subspan(kChecked, kPacketHeaderBytes - kChecked));
  const std::size_t length = ReadWord(aBytes, kLength);
  if (!IsSameChecksum(header, ReadWord(aBytes, kHeaderChecksum)) || length > kMaxSpecificBytes)
    return PacketState::Damaged;
  const std::size_t size = kPacketHeaderBytes + length;
  if (aBytes.size() < size)
    return PacketState::Incomplete;
  if (!IsSameChecksum(GetChecksum(aBytes.subspan(kChecked, size - kChecked)), ReadWord(aBytes, kPacketChecksum)))
    return PacketState::Damaged;
  const auto specific = aBytes.subspan(kPacketHeaderBytes, length);
  aPacket = {ReadWord(aBytes, kChecked),
             ReadWord(aBytes, kCode),
             ReadWord(aBytes, kCommandID),
             ReadWord(aBytes, kRequestID),
             {specific.begin(), specific.end()}};
  aSize = size;
  return PacketState::Complete;
}

} // namespace krcamerabridge
